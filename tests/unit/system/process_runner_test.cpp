#include "system/process_runner.h"

#include "support/rows.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cerrno>

namespace {

QString latin1(const char* text) { return QString::fromLatin1(text); }

} // namespace

TEST(CommandLine, SplitsByQuotesAndBlanks) {
    for (const Row& row : rowsOf("system/runs.table", "words")) {
        QString words;
        for (const QString& word : splitCommandLine(latin1(row.text.c_str()))) {
            words += u'[' + word + u']';
        }
        EXPECT_EQ(words.toStdString(), row.expected) << row.text;
    }
}

TEST(OutputLines, FoldsBytesIntoLines) {
    for (const Row& row : rowsOf("system/runs.table", "lines")) {
        OutputLines lines;
        lines.add(QByteArray::fromStdString(row.text));
        lines.add("last\n");
        const QByteArray text = QByteArray(lines.text()).replace("\n", "][");
        EXPECT_EQ('[' + text.toStdString() + ']', row.expected + "[last]") << row.text;
    }
    OutputLines lines;
    lines.add(QByteArray("a\0b\n", 4));
    EXPECT_EQ(lines.text(), QByteArray("a\0b", 3));
}

// Scripts always wait, and in their own folder.
TEST(ProcessRunner, WithoutWaitingAndElsewhere) {
    EXPECT_EQ(runProcess({latin1("sleep"), latin1("0.3")}, false, QString(), nullptr, nullptr), 0);
    while (waitpid(-1, nullptr, 0) > 0) {
    }
    EXPECT_EQ(errno, ECHILD);
    OutputLines out;
    OutputLines err;
    EXPECT_EQ(runProcess({latin1("pwd")}, true, latin1("/"), &out, &err), 0);
    EXPECT_EQ(runProcess({latin1("echo"), latin1("on")}, true, latin1("/no/such"), &out, &err), 0);
    EXPECT_EQ(out.text(), "/\non");
}

// Grandchildren that keep stderr, or write to it without end, don't hold the run up.
TEST(ProcessRunner, WaitsForNoneButTheChild) {
    const char* const rows[] = {
        "echo ab; exec >&- 2>&-; sleep 0.2; exit 2",
        "timeout 60 yes >&2 2>/dev/null & echo ab; exit 2",
        "{ exec >&-; timeout 60 yes >&2; } & echo ab; exit 2",
    };
    for (const char* const row : rows) {
        OutputLines out;
        OutputLines err;
        const QStringList words{latin1("sh"), latin1("-c"), latin1(row)};
        EXPECT_EQ(runProcess(words, true, QString(), &out, &err), 2) << row;
        EXPECT_EQ(out.text(), "ab");
    }
}
