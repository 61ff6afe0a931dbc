// What of the set-up no script can see.
#include "natives/standard_library.h"

#include "runtime/context.h"

#include <gtest/gtest.h>

namespace {

class StandardLibrary : public ::testing::Test {
protected:
    StandardLibrary() { ctx.initContext(); }

    ESContext ctx;
};

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
