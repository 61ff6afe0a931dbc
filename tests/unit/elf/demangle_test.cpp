#include "elf/demangle.h"

#include "support/rows.h"
#include "system/native_stack.h"

#include <gtest/gtest.h>

namespace {

void check(const std::string& mangled, const std::string& text, NameStyle style) {
    EXPECT_EQ(demangle(mangled.c_str(), style), text) << mangled;
    EXPECT_TRUE(matchesName(mangled.c_str(), text, style)) << mangled;
    for (const std::string& other :
         {text + "x", "x" + text, text.substr(0, text.size() - 1), std::string()}) {
        EXPECT_FALSE(matchesName(mangled.c_str(), other, style)) << mangled << " as " << other;
    }
}

void checkTable(const char* section, NameStyle style) {
    for (const auto& [mangled, name] : rowsOf("elf/names.table", section)) {
        check(mangled, name != "(itself)" ? name : mangled, style);
    }
}

TEST(Demangle, GnuV3) {
    checkTable("GNU v3", NameStyle::GnuV3);
    EXPECT_EQ(demangle("__Z9foo", NameStyle::GnuV3), "_Z9foo"); // without the underscore all the same
    EXPECT_EQ(demangle("", NameStyle::GnuV3), "");
}

TEST(Demangle, ArmStyle) { checkTable("ARM style", NameStyle::Arm); }

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string substitution(int number) {
    const char digit = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[number % 36];
    return "S" + (number < 36 ? std::string() : std::to_string(number / 36 - 1)) + digit + "_";
}

// Names that would take megabytes, years or the native stack.
TEST(Demangle, HostileNamesStayAsTheyAre) {
    std::string doubling = "_Z1fPFvvE"; // each argument takes the one before twice
    std::string pairs = "St4pair" + repeated("IS_", 40) + "IiiE";
    for (int i = 0; i < 40; ++i) {
        doubling += "PFv" + substitution(2 * i) + substitution(2 * i) + "E";
        pairs += substitution(i) + "E";
    }
    const std::string conversions = repeated("T_I", 60) + "i" + repeated("E", 60) + "v";
    const std::string emptyPacks = repeated("Z1hIJJT_T_EEEv", 40) + "T_" + repeated("E1x", 40);
    for (const std::string& name :
         {doubling, "_GLOBAL__I_" + doubling, "Dp" + pairs, "_Z1fIiEvDTsZ" + pairs + "E",
          "_Zcv" + conversions, "_Z1gIJJEEEv" + emptyPacks,
          "_Z1f500" + std::string(500, 'a') + repeated("S_", 150), "_Z" + repeated("1a", 511) + "v",
          "_Z1f" + repeated("FvS", 300)}) {
        check(name, name, NameStyle::GnuV3);
    }
    for (const std::string& name :
         {std::string("f__FiN999999_1"), std::string("f__FiN99999999999999999999_1"),
          std::string("f__F99999999999999999999a"), "f__F" + repeated("PF", 4000),
          "f__FPi" + repeated("N9999_1", 2000), repeated("__std__", 2400) + "f",
          "f__FQ_60000_" + repeated("1a", 4000), std::string(1 << 20, '_')}) {
        check(name, name, NameStyle::Arm);
    }
}

const std::string deepName = "_Z1f" + repeated("P", 900) + "i";

std::string demangledWithLittleStack() {
    volatile char frame[16 * 1024];
    frame[0] = 'f';
    std::string text =
        nativeStackLeft() < 256 * 1024 ? demangle(deepName, NameStyle::GnuV3) : demangledWithLittleStack();
    return text[0] == frame[0] ? std::string() : text;
}

TEST(Demangle, ADeepNameStaysWhereTheStackIsShort) {
    EXPECT_EQ(demangle(deepName, NameStyle::GnuV3), "f(int" + repeated("*", 900) + ")");
    if (nativeStackLeft() < 64 << 20) {
        EXPECT_EQ(demangledWithLittleStack(), deepName);
    }
}

TEST(Demangle, NestingOfArmTypesHasABound) {
    const auto nested = [](int depth) {
        return "f__F" + repeated("PF", depth) + "i" + repeated("_v", depth);
    };
    EXPECT_NE(demangle(nested(200), NameStyle::Arm), nested(200));
    EXPECT_EQ(demangle(nested(300), NameStyle::Arm), nested(300));
}

} // namespace
