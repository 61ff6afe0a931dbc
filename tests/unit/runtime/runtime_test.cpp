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
    for (int i = 0; i < 3000; ++i) {
        const QString plain(below(40), QChar(u'a' + i % 20));
        auto left = std::pair(ctx.newString(plain), plain);
        const auto right = texts.empty() ? left : texts[random() % texts.size()];
        left = i < 20 ? left : texts[random() % texts.size()];
        const auto from = static_cast<std::uint32_t>(below(static_cast<int>(left.second.size()) + 1));
        const auto length = static_cast<std::uint32_t>(left.second.size()) - from;
        const QString number = QString::number(-i - 0.5, 'g', 6);
        const std::pair<ESValue, QString> made[] = {
            {ctx.concatenateNumber(left.first, numberValue(i)), left.second + QString::number(i)},
            {ctx.concatenateNumber(numberValue(-i - 0.5), right.first), number + right.second},
            {ctx.substring(left.first, from, length / 2), left.second.mid(from, length / 2)},
            {ctx.concatenate(left.first, right.first), left.second + right.second}};
        const auto& next = i < 20 ? left : made[below(4)];
        if (next.second.size() <= 5000) {
            ASSERT_TRUE(below(5) != 0 || ESContext::viewOf(next.first) == next.second) << i;
            texts.push_back(next);
        }
    }
    for (const auto& [value, text] : texts) {
        ASSERT_EQ(ESContext::viewOf(value).toString(), text);
        ASSERT_EQ(ctx.toAtom(value), intern(text));
    }
}

TEST_F(Runtime, NumbersPrintAsTheyShould) {
    for (int i = 0; i < 20000; ++i) {
        const double x = std::ldexp(static_cast<double>(random()) - 2147483648.0, below(80) - 60);
        const QString text = ctx.toString(numberValue(x));
        if (x == std::trunc(x)) {
            ASSERT_EQ(text.toDouble(), x);
        } else {
            ASSERT_EQ(text, QString::number(x, 'g', 6)) << x;
        }
    }
    EXPECT_EQ(ctx.toString(numberValue(std::numeric_limits<double>::max()), 2).size(), 1024);
}

// A property table against a map, through growth, deletion and compaction.
TEST_F(Runtime, PropertyTablesKeepWhatTheyAreGiven) {
    for (int names = 3; names < 400; names *= 2) {
        ESPropertyTable table;
        std::map<ESAtom, double> model;
        for (int i = 0; i < 4000; ++i) {
            const ESAtom atom = intern(QStringLiteral("p%1").arg(below(names)));
            ESProperty* slot = table.find(atom);
            ASSERT_EQ(slot != nullptr, model.count(atom) == 1);
            if (slot == nullptr) {
                slot = &table.append(ctx.arena(), atom, 0, numberValue(model[atom] = i));
            }
            ASSERT_EQ(slot->number, model[atom]);
            if (below(2) == 0) {
                table.erase(*slot);
                model.erase(atom);
            }
        }
        EXPECT_LT(table.count(), static_cast<std::uint32_t>(names) * 4 + 8) << "deleted slots pile up";
    }
}

TEST_F(Runtime, AnEnumeratorGivesItsNamesBack) {
    ctx.evaluate(QStringLiteral("var o = {x: 1, y: 2}, k; for (k in o);"));
    const ESPropertyTable& globals = ctx.globalObject->properties;
    for (std::uint32_t i = 0; i < globals.count(); ++i) {
        EXPECT_TRUE(globals.at(i).tag != ESTagObject || globals.at(i).object->elements.count() == 0);
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
            const QString forms[] = {left + u'+' + right,
                                     left + u'+' + pick(11),
                                     pick(11) + u'+' + left,
                                     left + QStringLiteral(".substring(%1, %2)").arg(pick(9), pick(9)),
                                     left + QStringLiteral(".concat(%1, %2)").arg(pick(11), right),
                                     left + QStringLiteral(".toUpperCase()"),
                                     QStringLiteral("String(%1 / 8)").arg(pick(99)),
                                     QStringLiteral("[%1, %2, 'a'].join('')").arg(left, pick(11))};
            program += QStringLiteral("k = %1; t[%2] = k.length > 99 ? k.charAt(7) : k;")
                           .arg(forms[random() % std::size(forms)], pick(5));
            if (i % 5 == 4) {
                program += QStringLiteral("o[%1] = o[%2] = o[%3] = 1;").arg(left, right, pick(400));
            }
            if (i % 20 == 19) {
                program += QStringLiteral("for (k in o) s += k + ' ';");
            }
        }
        QString outcomes[2];
        for (const auto form : {ESExecutionForm::Bytes, ESExecutionForm::Fused}) {
            const bool slowly = form == ESExecutionForm::Bytes;
            forgetAllRuns();
            if (slowly) {
                textLog.internEveryText();
            }
            ESContext context;
            context.executionForm = form;
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
            EXPECT_NE(std::uint32_t(hashOf(text)), std::uint32_t(hashOf(other))) << length << ' ' << i;
        }
    }
}

} // namespace
