// The faults that no script can cause, and what holds right after start.
#include "natives/standard_library.h"

#include "runtime/context.h"

#include <gtest/gtest.h>
#include <string>

namespace {

class StandardLibrary : public ::testing::Test {
protected:
    StandardLibrary() { ctx.initContext(); }

    // The message that `run` raises, without the line, or an empty text.
    template <typename Run>
    std::string messageOf(ESObject* errorConstructor, Run run) {
        try {
            run();
        } catch (const ESException& e) {
            EXPECT_EQ(ctx.get(e.value.object, wellKnownAtoms.constructor).object, errorConstructor);
            return ctx.toString(ctx.get(e.value.object, wellKnownAtoms.message)).mid(8).toStdString();
        }
        return {};
    }

    ESContext ctx;
};

TEST_F(StandardLibrary, RefusesIndexesWithoutAMember) {
    ESClass* const classes[] = {ctx.objectClass,     ctx.booleanClass,     ctx.arrayClass,
                                ctx.globalClass,     ctx.errorClass,       ctx.typeErrorClass,
                                ctx.numberClass,     ctx.mathClass,        ctx.stringClass,
                                ctx.functionClass,   ctx.dateClass,        ctx.evalErrorClass,
                                ctx.rangeErrorClass, ctx.syntaxErrorClass, ctx.referenceErrorClass};
    for (ESClass* cls : classes) {
        SCOPED_TRACE(cls->name);
        ESObject* fn = ctx.newObject(ctx.functionPrototype, cls);
        ESObject* self = ctx.newPlainObject();
        ESValue argv[8] = {};
        fn->memberIndex = 999;
        EXPECT_EQ(messageOf(ctx.errorConstructor, [&] { cls->call(ctx, fn, self, 1, argv); }),
                  "bad signature in builtin call");
        EXPECT_EQ(messageOf(ctx.errorConstructor, [&] { cls->construct(ctx, fn, 1, argv); }),
                  "bad signature in builtin construct");
    }
}

TEST_F(StandardLibrary, NamesFunctionsInFull) {
    struct Row {
        ESObject* owner;
        const char* member;
        const char* fullName;
    };
    const Row rows[] = {
        {ctx.globalObject, "parseInt", "parseInt"},
        {ctx.globalObject, "Array", "Array"},
        {ctx.globalObject, "TypeError", "Error"},
        {ctx.arrayPrototype, "push", "Array.prototype.push"},
        {ctx.objectPrototype, "toString", "Object.prototype.toString"},
        {ctx.functionPrototype, "toString", "Function.prototype.toString"},
        {ctx.get(ctx.globalObject, intern("Math")).object, "sqrt", "Math.sqrt"},
    };
    for (const Row& row : rows) {
        const ESValue fn = ctx.get(row.owner, intern(row.member));
        ASSERT_TRUE(fn.isObject()) << row.member;
        EXPECT_EQ(ctx.toString(fn.object->value).toStdString(), row.fullName);
    }
    EXPECT_EQ(ctx.toString(ctx.functionPrototype->value).toStdString(), "Function.prototype");
    EXPECT_EQ(ctx.toString(ctx.globalObject->value).toStdString(), "[object global]");
}

// Compiled code refers to globals by position, over any number of new ones and whatever is deleted.
TEST_F(StandardLibrary, KeepsThePositionsOfGlobals) {
    const ESAtom first = ctx.globalObject->properties.at(0).atom;
    ESPropertyTable& globals = ctx.globalObject->properties;
    const std::uint32_t position = globals.count();
    for (int i = 0; i < 200; ++i) {
        ctx.put(ctx.globalObject, intern(QStringLiteral("g%1").arg(i)), numberValue(i));
        if (i < 150) {
            ctx.deleteProperty(ctx.globalObject, intern(QStringLiteral("g%1").arg(i)));
        }
    }
    EXPECT_EQ(globals.at(0).atom, first);
    for (std::uint32_t i = 150; i < 200; ++i) {
        EXPECT_EQ(globals.at(position + i).value().number, i);
    }
}

// Two contexts share the atoms and nothing else.
TEST_F(StandardLibrary, IsBuiltAnewForEachContext) {
    ESContext other;
    other.initContext();
    ctx.put(ctx.arrayPrototype, wellKnownAtoms.name, numberValue(1));
    EXPECT_TRUE(other.get(other.arrayPrototype, wellKnownAtoms.name).isUndefined());
    EXPECT_NE(other.arrays, ctx.arrays);
    EXPECT_EQ(other.globalObject->properties.count(), ctx.globalObject->properties.count());
}

} // namespace
