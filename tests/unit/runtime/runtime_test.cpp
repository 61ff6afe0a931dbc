#include "machine/code_block.h"
#include "natives/standard_library.h"
#include "runtime/arena.h"
#include "runtime/atom.h"
#include "runtime/context.h"
#include "runtime/object.h"
#include "runtime/text.h"
#include "runtime/text_hash.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace {

class Runtime : public testing::Test {
protected:
    Runtime() {
        forgetAllRuns(); // an order depends on all that was made before
        ctx.initContext();
    }
    ESContext ctx;
    std::mt19937 random{20261122};
    int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
};

// Concatenations in every shape, looked at now and then, against plain strings.
TEST_F(Runtime, TextsAreWhatTheyWerePutTogetherFrom) {
    std::vector<std::pair<ESValue, QString>> texts;
    for (int i = 0; i < 20; ++i) {
        const QString text(below(40), QChar(u'a' + i));
        texts.emplace_back(ctx.newString(text), text);
    }
    for (int i = 0; i < 3000; ++i) {
        const auto& left = texts[static_cast<std::size_t>(below(static_cast<int>(texts.size())))];
        const auto& right = texts[static_cast<std::size_t>(below(static_cast<int>(texts.size())))];
        std::pair<ESValue, QString> made;
        switch (below(4)) {
        case 0:
            made = {ctx.concatenateNumber(left.first, numberValue(i)), left.second + QString::number(i)};
            break;
        case 1:
            made = {ctx.concatenateNumber(numberValue(-i - 0.5), right.first),
                    QString::number(-i - 0.5, 'g', 6) + right.second};
            break;
        case 2: {
            const int from = below(static_cast<int>(left.second.size()) + 1);
            const int length = below(static_cast<int>(left.second.size()) - from + 1);
            made = {ctx.substring(left.first, static_cast<std::uint32_t>(from),
                                  static_cast<std::uint32_t>(length)),
                    left.second.mid(from, length)};
            break;
        }
        default:
            made = {ctx.concatenate(left.first, right.first), left.second + right.second};
        }
        if (made.second.size() > 5000) {
            continue;
        }
        if (below(5) == 0) {
            ASSERT_EQ(ESContext::viewOf(made.first), made.second) << i;
        }
        texts.push_back(made);
    }
    for (const auto& [value, text] : texts) {
        ASSERT_EQ(ESContext::viewOf(value).toString(), text);
        ASSERT_EQ(ctx.toAtom(value), intern(text));
    }
}

TEST_F(Runtime, NumbersPrintAsTheyShould) {
    for (int i = 0; i < 20000; ++i) {
        const double x = std::ldexp(static_cast<double>(random()) - 2147483648.0, below(80) - 60);
        double whole;
        if (std::modf(x, &whole) != 0) {
            ASSERT_EQ(ctx.toString(numberValue(x)), QString::number(x, 'g', 6)) << x;
        } else {
            ASSERT_EQ(ctx.toString(numberValue(x)).toDouble(), x) << x;
        }
    }
    const struct {
        double number;
        int radix;
        const char* text;
    } cases[] = {
        {255, 16, "ff"},
        {-1, 16, "ffffffffffffffff"},
        {-0.0, 10, "0"},
        {1e15, 10, "1000000000000000"},
        {0.000001, 10, "1e-06"},
        {9007199254740993.0, 10, "9007199254740992"},
        {1e21, 10, "1000000000000000000000"},
        {-1e21, 10, "-1000000000000000000000"},
        {18446744073709551616.0, 16, "10000000000000000"},
        {9223372036854775808.0, 2, "1000000000000000000000000000000000000000000000000000000000000000"},
        {35, 36, "z"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ctx.toString(numberValue(c.number), c.radix), QString::fromLatin1(c.text)) << c.number;
    }
    EXPECT_EQ(ctx.toString(numberValue(std::numeric_limits<double>::max()), 2).size(), 1024);
}

TEST_F(Runtime, TextsBecomeNumbers) {
    const struct {
        const char* text;
        double number;
    } cases[] = {
        {" 12 ", 12},  {"0x10", 16},    {"0XfF", 255},
        {"1e3", 1000}, {"-1.5", -1.5},  {"0xffffffff", 4294967295.0},
        {"+7", 7},     {"007", 7},      {".5", 0.5},
        {"5.", 5},     {"1e-3", 0.001},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ctx.toDouble(ctx.newString(c.text)), c.number) << c.text;
    }
    for (const char* text : {"", "   ", "0x", "0x100000000", "12abc", "0xg", "1 2", "-", "."}) {
        EXPECT_TRUE(std::isnan(ctx.toDouble(ctx.newString(text)))) << text;
    }
    const struct {
        double number;
        std::int32_t bits;
    } wraps[] = {{4294967296.0, 0},
                 {2147483648.0, INT32_MIN},
                 {-1.5, -1},
                 {1e300, 0},
                 {-4294967297.0, -1},
                 {9007199254740993.0 * 1024, 0},
                 {18446744073709555712.0, 4096},
                 {esInfinity, 0},
                 {esNaN, 0}};
    for (const auto& w : wraps) {
        EXPECT_EQ(ctx.toInt32(numberValue(w.number)), w.bits) << w.number;
    }
}

// A property table against a map, through growth, deletion and compaction.
TEST_F(Runtime, PropertyTablesKeepWhatTheyAreGiven) {
    for (int round = 0; round < 20; ++round) {
        ESPropertyTable table;
        std::map<ESAtom, double> model;
        const int names = 3 << (round % 8);
        for (int i = 0; i < 2000; ++i) {
            const ESAtom atom = intern(QStringLiteral("p%1_%2").arg(round).arg(below(names)));
            ESProperty* slot = table.find(atom);
            ASSERT_EQ(slot != nullptr, model.count(atom) == 1);
            if (slot != nullptr && below(2) == 0) {
                table.erase(*slot);
                model.erase(atom);
            } else if (slot != nullptr) {
                ASSERT_EQ(slot->number, model[atom]);
                slot->setValue(numberValue(i));
                model[atom] = i;
            } else {
                table.append(ctx.arena(), atom, 0, numberValue(i));
                model[atom] = i;
            }
        }
        for (const auto& [atom, number] : model) {
            ASSERT_NE(table.find(atom), nullptr);
            ASSERT_EQ(table.find(atom)->number, number);
        }
        EXPECT_LT(table.count(), static_cast<std::uint32_t>(names) * 4 + 8) << "deleted slots pile up";
    }
}

QString names(ESContext& ctx, const char* script) {
    const ESCompletion completion = ctx.evaluate(
        QString::fromLatin1(script) +
        QStringLiteral("var text = ''; for (var k in o) if (o.hasOwnProperty(k)) text += k + ' '; text"));
    return ctx.toString(completion.value);
}

// `for in` shows names in the order in which they first came into being, elements of a vector included.
TEST_F(Runtime, EnumerationFollowsTheOrderOfFirstUse) {
    EXPECT_EQ(names(ctx, "var o = {}; o.zz = 1; o.aa = 2; o[5] = 3; o['b' + 'c'] = 4;"),
              QStringLiteral("5 zz aa bc "));
    EXPECT_EQ(names(ctx, "o = {}; o[1400] = 1; o[1200] = 2; o[1300] = 3;"),
              QStringLiteral("1400 1200 1300 "));
    EXPECT_EQ(names(ctx, "o = {}; var first = 'u' + 1, second = 'v' + 1; o[second] = 1; o[first] = 2;"),
              QStringLiteral("u1 v1 "));
    // Computed keys: a literal one counts from its compilation on.
    EXPECT_EQ(names(ctx, "o = []; var i, x, c = 400; for (i = c + 2; i >= c; i--) x = o[i];"
                         "o = {}; for (i = c - 1; i < c + 3; i++) o[i] = 1;"),
              QStringLiteral("402 401 400 399 "));
    EXPECT_EQ(names(ctx,
                    "o = []; var b = 290; o[b + 9] = 1; o[b + 8] = 1; for (i = 0; i < b + 10; i++) o[i] = i;"
                    "o = {}; for (i = b + 7; i < b + 10; i++) o[i] = 1;"),
              QStringLiteral("299 298 297 "));
    // A text counts from its making by a script or for one, though it is no name then; an argument's doesn't.
    for (const auto& [script, expected] : {
             std::pair(
                 "a = []; for (i = 0; i < 3; i++) a[i] = 'k' + i; for (i = 2; i >= 0; i--) o['k' + i] = 1;",
                 "k0 k1 k2 "),
             {"x = -2.5 + ''; x = 3.5; 'ab'.indexOf(x); o[-1.5] = 1; o[x] = 1; o[-2.5] = 1;",
              "-2.5 -1.5 3.5 "},
             {"x = 'mn'.concat('o', 'p'); x += 'q'; o['m' + 'no'] = 1; o['m' + 'nopq'] = 1; o['m' + 'nop'] = "
              "1;",
              "mnop mnopq mno "},
             {"a = new Array(620); a.slice(618); for (i = 621; i > 616; i--) o[i] = 1;",
              "618 619 621 620 617 "},
             {"a = new Array(720); a.concat(); for (i = 721; i > 716; i--) o[i] = 1;",
              "717 718 719 721 720 "},
             {"a = new Array(820); a.sort(); for (i = 821; i > 816; i--) o[i] = 1;", "819 818 817 821 820 "},
             {"a = new Array(9000); a[1] = 1; a.reverse(); for (i = 950; i < 952; i++) o[i] = o[i + 7099] = "
              "1;",
              "8050 950 8049 951 "},
         }) {
        EXPECT_EQ(names(ctx, (std::string("o = {};") + script).c_str()), QString::fromLatin1(expected));
    }
    const auto kept = [&](const ESProperty& p) {
        return p.tag == ESTagObject ? p.object->elements.count() : 0;
    };
    ctx.evaluate(QStringLiteral("o = {x: 1, y: 2}; a = 0; for (x in o);"));
    for (std::uint32_t i = 0; i < ctx.globalObject->properties.count(); ++i) {
        EXPECT_EQ(kept(ctx.globalObject->properties.at(i)), 0) << "an enumerator keeps its names";
    }
}

// The order of `for in`, told by what was noted, against that of a run that makes an atom of every text.
TEST(Enumeration, AgreesWithInterningEveryText) {
    std::mt19937 random(20261123);
    const auto pick = [&](unsigned n) { return QString::number(random() % n); };
    for (int round = 0; round < 150; ++round) {
        QString program = QStringLiteral("var s = '', k, o = {}, t = ['a', 'b1', 'a1', 'B', '1'];");
        for (int i = 0; i < 60; ++i) {
            const QString left = QStringLiteral("t[%1]").arg(pick(5));
            const QString right = QStringLiteral("t[%1]").arg(pick(5));
            const QString forms[] = {
                left + u'+' + right,
                left + u'+' + pick(130),
                pick(130) + u'+' + left,
                QStringLiteral("%1.substring(%2, %3)").arg(left, pick(9), pick(9)),
                QStringLiteral("%1.concat(%2, %3)").arg(left, pick(130), right),
                QStringLiteral("%1.toUpperCase()").arg(left),
                QStringLiteral("String(%1 / 8)").arg(pick(2000)),
                QStringLiteral("[%1, %2, 'a'].join('')").arg(left, pick(130)),
            };
            program += QStringLiteral("k = %1; t[%2] = k.length > 99 ? k.charAt(7) : k;")
                           .arg(forms[random() % std::size(forms)], pick(5));
            if (i % 3 == 0) {
                program += QStringLiteral("o[%1] = o[%2] = 1;").arg(left, pick(400));
            }
            if (i % 20 == 19) {
                program += QStringLiteral("for (k in o) s += k + ' ';");
            }
        }
        QString outcomes[2];
        for (const bool slowly : {false, true}) {
            forgetAllRuns();
            if (slowly) {
                textLog.internEveryText();
            }
            ESContext context;
            context.executionForm = slowly ? ESExecutionForm::Bytes : ESExecutionForm::Fused;
            context.initContext();
            outcomes[slowly] = context.toString(context.evaluate(program + u's').value);
        }
        ASSERT_EQ(outcomes[0], outcomes[1]) << program.toStdString();
    }
    forgetAllRuns();
}

// A difference anywhere in a text shows, wherever the text lies.
TEST(TextHash, TellsTextsApart) {
    for (qsizetype length = 1; length < 20; ++length) {
        const QString text(length, u'x');
        const QString shifted = u'y' + text;
        EXPECT_EQ(hashOf(text), hashOf(QStringView(shifted).sliced(1)));
        EXPECT_NE(hashOf(text), hashOf(shifted));
        for (qsizetype i = 0; i < length; ++i) {
            QString other = text;
            other[i] = u'z';
            EXPECT_NE(hashOf(text), hashOf(other)) << length << ' ' << i;
        }
    }
}

} // namespace
