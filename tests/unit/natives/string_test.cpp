// What no script can see: that the machine's short way to a string's members gives what the long way gives,
// and that it is closed where a script could tell the two apart.
#include "natives/string.h"

#include "runtime/context.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class StringMembers : public testing::Test {
protected:
    StringMembers() { ctx.initContext(); }

    ESObject* member(const char* name) {
        const ESValue fn = ctx.get(ctx.stringPrototype, intern(name));
        return fn.isObject() ? fn.object : nullptr;
    }

    ESValue theLongWay(ESObject* fn, const ESValue& text, const std::vector<ESValue>& arguments) {
        ESValue result = undefinedValue();
        ctx.callFunction(fn, ctx.objectOf(text), static_cast<std::int32_t>(arguments.size()),
                         arguments.data(), result);
        return result;
    }

    bool theShortWay(const ESObject* fn, const ESValue& text, std::vector<ESValue> arguments,
                     ESValue& result) {
        const auto argc = static_cast<std::int32_t>(arguments.size());
        arguments.push_back(nullValue()); // the result has a place also without arguments
        const bool done = ctx.stringClass->callOnText(ctx, fn->memberIndex, text, argc, arguments.data());
        result = arguments[0];
        return done;
    }

    std::string shown(const ESValue& v) {
        return std::to_string(v.isString() ? unsigned{ESTagString} : v.tag) + ":" +
               ctx.toString(v).toStdString();
    }

    ESContext ctx;
};

const char* const memberNames[] = {
    "toString",    "valueOf",       "charAt",      "charCodeAt",        "concat",      "indexOf",
    "lastIndexOf", "localeCompare", "match",       "replace",           "search",      "slice",
    "split",       "substring",     "toLowerCase", "toLocaleLowerCase", "toUpperCase", "toLocaleUpperCase",
};

TEST_F(StringMembers, ShortWayGivesWhatTheLongWayGives) {
    const std::vector<ESValue> texts = {ctx.newString(""), ctx.newString("a"),
                                        ctx.newString("abcABCabc\xe9")};
    const std::vector<ESValue> values = {
        undefinedValue(),  nullValue(),        booleanValue(true),      numberValue(0),
        numberValue(-1),   numberValue(2.7),   numberValue(5e9),        numberValue(esNaN),
        ctx.newString(""), ctx.newString("b"), ctx.newString("1"),      numberValue(-esInfinity),
        numberValue(9),    numberValue(10),    numberValue(esInfinity), ctx.newString("abc"),
    };
    std::vector<std::vector<ESValue>> argumentLists = {{}};
    for (const ESValue& first : values) {
        argumentLists.push_back({first});
        for (const ESValue& second : values) {
            argumentLists.push_back({first, second});
        }
    }
    for (const char* name : memberNames) {
        ESObject* fn = member(name);
        ASSERT_NE(fn, nullptr) << name;
        for (const ESValue& text : texts) {
            for (const std::vector<ESValue>& arguments : argumentLists) {
                ESValue result;
                ASSERT_TRUE(theShortWay(fn, text, arguments, result)) << name;
                EXPECT_EQ(shown(result), shown(theLongWay(fn, text, arguments)))
                    << name << " with " << arguments.size() << " arguments on " << shown(text);
            }
        }
    }
}

TEST_F(StringMembers, ShortWayIsClosedWhereAScriptCouldTell) {
    const ESValue text = ctx.newString("abc");
    const ESValue object = objectValue(ctx.newPlainObject());
    ESObject* charAt = member("charAt");
    ESObject* toString = member("toString");
    ESValue result;
    EXPECT_FALSE(theShortWay(charAt, text, {object}, result));
    EXPECT_TRUE(result.isObject()) << "the argument must stay as it was";
    EXPECT_FALSE(theShortWay(member("concat"), text, {text, object}, result));
    EXPECT_FALSE(theShortWay(member("constructor"), text, {text}, result));
    const ESValue fromCharCode = ctx.get(member("constructor"), intern("fromCharCode"));
    EXPECT_FALSE(theShortWay(fromCharCode.object, text, {numberValue(65)}, result));

    EXPECT_TRUE(theShortWay(charAt, text, {numberValue(1)}, result));
    ctx.put(ctx.stringPrototype, wellKnownAtoms.toString, objectValue(charAt));
    EXPECT_FALSE(theShortWay(charAt, text, {numberValue(1)}, result)) << "replaced";
    ctx.put(ctx.stringPrototype, wellKnownAtoms.toString, objectValue(toString));
    EXPECT_TRUE(theShortWay(charAt, text, {numberValue(1)}, result)) << "put back";
    ctx.deleteProperty(ctx.stringPrototype, wellKnownAtoms.toString);
    EXPECT_FALSE(theShortWay(charAt, text, {numberValue(1)}, result)) << "deleted";
    for (int i = 0; i < 100; ++i) { // whatever else happens to the prototype, the answer stays right
        ctx.put(ctx.stringPrototype, intern(QString::number(i) + QLatin1Char('x')), text);
    }
    EXPECT_FALSE(theShortWay(charAt, text, {numberValue(1)}, result));
}

TEST_F(StringMembers, PartsShareTheCharactersOfTheWhole) {
    const ESValue whole = ctx.newString("a text that nobody wants to copy");
    for (const char* name : {"slice", "substring"}) {
        ESValue part;
        ASSERT_TRUE(theShortWay(member(name), whole, {numberValue(2), numberValue(6)}, part));
        EXPECT_EQ(ESContext::textOf(part).characters(), ESContext::textOf(whole).characters() + 2) << name;
    }
}

} // namespace
