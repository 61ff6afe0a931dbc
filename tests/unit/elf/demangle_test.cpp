#include "elf/demangle.h"

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
        {"_ZGVZ1fvE1x", "guard variable for f()::x"},
        {"_Z1fv.isra.0", "f() [clone .isra.0]"},
        {"_ZN1AC1Ev", "A::A()"},
        {"_GLOBAL__I_foo", "global constructors keyed to foo"},
        {"_GLOBAL__sub_I_foo", nullptr},
        {"_Z1fPFvvEPFvS0_S0_E", "f(void (*)(), void (*)(void (*)(), void (*)()))"},
        // whole names that are types
        {"i", "int"},
        {"Pc", "char*"},
        {"Ss", "std::string"},
        {"3foo", "foo"},
        // not mangled, or not well
        {"main", nullptr},
        {"_Z", nullptr},
        {"_Z9foo", nullptr},
        {"h__Fc", nullptr},
        {"_R", nullptr},
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
        {"h__FUc", "h(unsigned char)"},
        {"h__FcT1", "h(char, char)"},
        {"f__FicdPcPFci_v", "f(int, char, double, char *, void (*)(char, int))"},
        {"__nw__2T1SFUi", "T1::operator new(unsigned int) static"},
        {"get__2T1SFv", "T1::get(void) static"},
        {"__apl__FR2T2i", "operator+=(T2 &, int)"},
        {"__eq__3fooCFR3foo", "foo::operator==(foo &) const"},
        {"bar__3fooCFPv", "foo::bar(void *) const"},
        {"put__Q5_2T11a1b1c1dSFi", "T1::a::b::c::d::put(int) static"},
        {"__dt__Q3_2T11a1bSFi", "T1::a::b::~b(int) static"},
        {"__std__foo", "global destructors keyed to foo"},
        {"__sti__bar", "global constructors keyed to bar"},
        {"__ct__12T5__pt__3_1xFi", "T5<x>::T5(int)"},
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
        {"__opi__3fooFv", "foo::operator int(void)"},
        {"__opPCc__3fooCFv", "foo::operator char *(void) const"},
        {"__vn__FUi", "operator new [](unsigned int)"},
        {"__2foo", "foo"},
        {"f___Fi", "f_(int)"},
        {"List__pt__2_i", "List<int>"},
        {"f__FL", nullptr},
        {"g__18A__pt__10_7B__pt__2_iFv", nullptr}, // a length that doesn't fit
        {"g__16A__pt__8_B__pt__", nullptr},
        {"g__22A__pt__13_10B__pt__2_iFv", "A<B<int>>::g(void)"},
        {"__dt__26bar__pt__15_12foo__pt__2_wFv", "bar<foo<wchar_t>>::~bar(void)"},
        {"__ct__Q2_3std15vector__pt__2_iFv", "std::vector<int>::vector<int>(void)"},
        {"__dt__Q2_3std15vector__pt__2_iFv", "std::vector<int>::~vector<int>(void)"},
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
        {"main", nullptr},
        {"foo__bar", nullptr},
        {"a__b__3fooFv", nullptr},
        {"foo__", nullptr},
        {"__ct__Fi", nullptr},
        {"f__FT1", nullptr},
        {"f__FiT2", nullptr},
        {"f__FiT0", nullptr},
        {"f__Fi_v", nullptr},
        {"f__FPFi", nullptr},
        {"f__FA_i", nullptr},
        {"_Z3fooi", nullptr},
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

// Names that would take megabytes, seconds or the native stack stay as they are.
TEST(Demangle, HostileNamesCostNothingToSpeakOf) {
    // Each argument is a pointer to a function that takes the one before twice: 60 of them stand for more
    // text than any memory holds.
    std::string doubling = "_Z1fPFvvE";
    for (int i = 0; i < 60; ++i) {
        const char digit = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[2 * i % 36];
        const std::string before = (i < 18 ? "S" : "S" + std::to_string(2 * i / 36 - 1)) + digit + "_";
        doubling += "PFv" + before + before + "E";
    }
    std::string pairs = "St4pair";
    std::string ends = "IiiE";
    for (int i = 0; i < 40; ++i) {
        pairs += "IS_";
        ends += "S" +
                (i < 36 ? std::string(1, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[i])
                        : "1" + std::to_string(i - 36)) +
                "_E";
    }
    const std::string conversions = repeated("T_I", 60) + "i" + repeated("E", 60) + "v";
    const std::string emptyPacks =
        "_Z1gIJJEEEv" + repeated("Z1hIJJT_T_EEEv", 40) + "T_" + repeated("E1x", 40);
    const struct {
        std::string name;
        NameStyle style;
    } kept[] = {
        {doubling, NameStyle::GnuV3},
        {"_GLOBAL__I_" + doubling, NameStyle::GnuV3},
        {"Dp" + pairs + ends, NameStyle::GnuV3}, // nothing is written while the pack is sought
        {"_Z1fIiEvDTsZ" + pairs + ends + "E", NameStyle::GnuV3},
        {"_Zcv" + conversions, NameStyle::GnuV3}, // while it is parsed
        {emptyPacks, NameStyle::GnuV3},           // nor at all
        {"_Z" + repeated("1a", 511) + "v", NameStyle::GnuV3},
        {"_ZN" + repeated("1a", 2000) + "E", NameStyle::GnuV3},
        {"_Z1f" + repeated("FvS", 300), NameStyle::GnuV3},
        {"f__FiN999999_1", NameStyle::Arm},
        {"f__FiN99999999999999999999_1", NameStyle::Arm},
        {"f__F99999999999999999999a", NameStyle::Arm},
        {"f__F" + repeated("PF", 4000), NameStyle::Arm},
        {"f__FPi" + repeated("N9999_1", 2000), NameStyle::Arm},
        {repeated("__std__", 2400) + "f", NameStyle::Arm},
        {"f__FQ_60000_" + repeated("1a", 4000), NameStyle::Arm},
        {std::string(1 << 20, '_'), NameStyle::Arm},
    };
    for (const auto& each : kept) {
        EXPECT_EQ(demangle(each.name, each.style), each.name);
        EXPECT_TRUE(matchesName(each.name, each.name, each.style)) << each.name.substr(0, 40);
        EXPECT_FALSE(matchesName(each.name, each.name + ")", each.style)) << each.name.substr(0, 40);
    }
    EXPECT_EQ(demangle("_Z1f" + repeated("P", 900) + "i", NameStyle::GnuV3),
              "f(int" + repeated("*", 900) + ")");
}

TEST(Demangle, NestingOfArmTypesHasABound) {
    const auto nested = [](int depth) {
        return "f__F" + repeated("PF", depth) + "i" + repeated("_v", depth);
    };
    EXPECT_NE(demangle(nested(200), NameStyle::Arm), nested(200));
    EXPECT_EQ(demangle(nested(300), NameStyle::Arm), nested(300));
}

} // namespace
