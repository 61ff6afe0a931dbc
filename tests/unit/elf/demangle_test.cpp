#include "elf/demangle.h"

#include "runtime/native_stack.h"

#include <gtest/gtest.h>

namespace {

struct Pair {
    const char* mangled;
    const char* text; // null: stays as it is
};

void check(const Pair& pair, NameStyle style) {
    const std::string text = pair.text != nullptr ? pair.text : pair.mangled;
    EXPECT_EQ(demangle(pair.mangled, style), text) << pair.mangled;
    EXPECT_TRUE(matchesName(pair.mangled, text, style)) << pair.mangled;
    for (const std::string& other :
         {text + "x", "x" + text, text.substr(0, text.size() - 1), std::string()}) {
        EXPECT_FALSE(matchesName(pair.mangled, other, style)) << pair.mangled << " as " << other;
    }
}

TEST(Demangle, GnuV3) {
    constexpr Pair pairs[] = {
        {"_Z3fooi", "foo(int)"},
        {"__Z3fooi", "foo(int)"},
        {"___Z3fooi", nullptr},
        {"_ZN5board3Led3setEb", "board::Led::set(bool)"},
        {"_ZN1AC1Ev", "A::A()"},
        {"_GLOBAL__I_foo", "global constructors keyed to foo"},
        {"_GLOBAL__sub_I_foo", nullptr},
        {"_Z1fPFvvEPFvS0_S0_E", "f(void (*)(), void (*)(void (*)(), void (*)()))"},
        // whole names that are types
        {"i", "int"},
        {"Pc", "char*"},
        {"Ss", "std::string"},
        // not mangled, or not well
        {"main", nullptr},
        {"_Z", nullptr},
        {"_Z9foo", nullptr},
        {"h__Fc", nullptr},
    };
    for (const Pair& pair : pairs) {
        check(pair, NameStyle::GnuV3);
    }
    EXPECT_EQ(demangle("__Z9foo", NameStyle::GnuV3), "_Z9foo"); // without the underscore all the same
    EXPECT_EQ(demangle("", NameStyle::GnuV3), "");
}

TEST(Demangle, ArmStyle) {
    constexpr Pair pairs[] = {
        {"__ct__1cFi", "c::c(int)"},
        {"h__FcT1", "h(char, char)"},
        {"__nw__2T1SFUi", "T1::operator new(unsigned int) static"},
        {"__apl__FR2T2i", "operator+=(T2 &, int)"},
        {"__dt__Q3_2T11a1bSFi", "T1::a::b::~b(int) static"},
        {"__std__foo", "global destructors keyed to foo"},
        {"__sti__bar", "global constructors keyed to bar"},
        {"X__12T5__pt__3_1x", "T5<x>::X"},
        {"__dt__21T5__pt__11_PFiPPdPv_iFv", "T5<int (*)(int, double **, void *)>::~T5(void)"},
        {"bar__3fooFPiN51PdN37PcN211T1iN215",
         "foo::bar(int *, int *, int *, int *, int *, int *, double *, double *, double *, double *, char *, "
         "char *, char *, int *, int, int, int)"},
        {"f__Fie", "f(int,...)"},
        {"f__Fe", "f(...)"},
        {"f__FxrbwUx", "f(long long, long double, bool, wchar_t, unsigned long long)"},
        {"f__FM3fooFi_v", "f(void (foo::)(int))"},
        {"f__FPM3fooFi_v", "f(void (foo::*)(int))"},
        {"f__FPO3foo_i", "f(int (foo::*))"},
        {"f__FA10_A20_c", "f(char [10][20])"},
        {"f__FPCc", "f(char *)"}, // qualifiers inside of types aren't shown
        {"bar__3fooCVFv", "foo::bar(void) const volatile"},
        {"complexfunc5__FPFPc_PFl_i", "complexfunc5(int (*(*)(char *))(long))"},
        {"f__FiR3fooT1T2T1T2", "f(int, foo &, int, foo &, int, foo &)"},
        {"f__FQ2_3foo3barQ_2_1a1b", "f(foo::bar, a::b)"},
        {"__vtbl__3foo__3bar", "bar::foo virtual table"},
        {"__vtbl__Q2_3foo3bar", "foo::bar::__vtbl"},
        {"__Q2_3foo3bar", "foo::bar"},
        {"__opPCc__3fooCFv", "foo::operator char *(void) const"},
        {"__vn__FUi", "operator new [](unsigned int)"},
        {"f___Fi", "f_(int)"},
        {"List__pt__2_i", "List<int>"},
        {"f__FL", nullptr},
        {"g__18A__pt__10_7B__pt__2_iFv", nullptr}, // a length that doesn't fit
        {"g__16A__pt__8_B__pt__", nullptr},
        {"g__22A__pt__13_10B__pt__2_iFv", "A<B<int>>::g(void)"},
        {"__dt__26bar__pt__15_12foo__pt__2_wFv", "bar<foo<wchar_t>>::~bar(void)"},
        {"__ct__Q2_3std15vector__pt__2_iFv", "std::vector<int>::vector<int>(void)"},
        {"f__FPM11Q2__pt__2_iFUi_v", "f(void (Q2__pt__2_i::*)(unsigned int))"},
        {"f__FPMQ2_1a10B__pt__2_iFv_v", "f(void (a::B<int>::*)(void))"},
        {"__vtbl__10i__pt__2_l__2f_", "f_::i__pt__2_l virtual table"},
        {"__op2f_3foo__3barCFv", "bar::operator f_(void) const"},
        {"get__2T1SCFv", "T1::get(void) static const"},
        {"get__2T1CSFv", "T1::get(void) static const"},
        {"f__12A__pt__4_L10Fv", "A<10>::f(void)"},
        {"f__14A__pt__6_XiL-5Fv", "A<(int)-5>::f(void)"},
        {"__a___Fi", nullptr},
        {"___Fi", "_(int)"},
        {"__nwa__FUi", "__nwa(unsigned int)"},
        {"__std____sti__f__Fi", "global destructors keyed to global constructors keyed to f(int)"},
        {"__dt__2T1Fv", "T1::~T1(void)"},
        {"__nw__FUi", "operator new(unsigned int)"},
        {"get__2T1SFv", "T1::get(void) static"},
        {"f__Fv", "f(void)"},
        {"f__FSc", "f(signed char)"},
        {"f__FPA10_i", "f(int (*)[10])"},
        {"bar__3foo", "foo::bar"},
        {"__2foo", "foo"},
        {"f__F9foo", nullptr},
        {"__foo", nullptr},
        {"foo__", nullptr},
        {"f__FiT0", nullptr},
        {"__vtbl__3fo", nullptr},
        {"main", nullptr},
        {"foo__bar", nullptr},
        {"a__b__3fooFv", nullptr},
        {"__ct__Fi", nullptr},
        {"f__FT1", nullptr},
        {"f__FiT2", nullptr},
        {"f__Fi_v", nullptr},
        {"f__FPFi", nullptr},
        {"f__FA_i", nullptr},
    };
    for (const Pair& pair : pairs) {
        check(pair, NameStyle::Arm);
    }
}

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
        check({name.c_str(), nullptr}, NameStyle::GnuV3);
    }
    for (const std::string& name :
         {std::string("f__FiN999999_1"), std::string("f__FiN99999999999999999999_1"),
          std::string("f__F99999999999999999999a"), "f__F" + repeated("PF", 4000),
          "f__FPi" + repeated("N9999_1", 2000), repeated("__std__", 2400) + "f",
          "f__FQ_60000_" + repeated("1a", 4000), std::string(1 << 20, '_')}) {
        check({name.c_str(), nullptr}, NameStyle::Arm);
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
