#include "hostobjects/process_runner.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>

namespace {

struct Result {
    int code = 0;
    QStringList out;
    QStringList err;
};

Result run(const QStringList& words) {
    Result result;
    result.code = runProcess(words, true, QString(), &result.out, &result.err);
    return result;
}

Result runShell(const char* script) {
    return run({QStringLiteral("sh"), QStringLiteral("-c"), QString::fromLatin1(script)});
}

QString latin1(const char* text) { return QString::fromLatin1(text); }

std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return std::distance(begin(entries), end(entries));
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

TEST(CommandLine, SplitsByQuotesAndBlanks) {
    const struct {
        const char* command;
        const char* words; // each in brackets
    } rows[] = {
        {"", ""},
        {"   ", ""},
        {"a  b", "[a][b]"},
        {" a ", "[a]"},
        {R"("a b" c)", "[a b][c]"},
        {R"(ab"c d"e)", "[abc de]"},
        {R"("" x)", "[x]"},
        {R"(""x"")", "[x]"},
        {R"(a\"b)", R"([a"b])"},
        {R"("a\" b" c)", R"([a" b][c])"},
        {R"(\"a b\")", R"(["a][b"])"},
        {R"(a\b \ c\)", R"([a\b][\][c\])"},
        {R"(a\\"b c")", R"([a\"b][c])"}, // the second backslash belongs to the quote, which opens nothing
        {"a\tb\nc", "[a\tb\nc]"},
        {R"(a "b c)", "[a][b c]"},
        {R"(a ")", "[a]"},
    };
    for (const auto& row : rows) {
        QString words;
        for (const QString& word : splitCommandLine(latin1(row.command))) {
            words += u'[' + word + u']';
        }
        EXPECT_EQ(words.toStdString(), row.words) << row.command;
    }
}

TEST(OutputLines, FoldsBytesIntoLines) {
    const struct {
        QByteArray output;
        const char* lines; // each in brackets, a null string as []
    } rows[] = {
        {"", ""},
        {"a", ""},
        {"ab", "[ab]"},
        {"a\n", "[a]"},
        {"\n", "[]"},
        {"a\n\nbc\n", "[a][][bc]"},
        {"a\nb", "[a]"},
        {"a\nbc", "[a][bc]"},
        {"ab\r\ncd\r\n", "[ab][cd]"},
        {"ab\rcde\r", "[ab][de]"},
        {"ab\r\r\ncd", "[ab][][cd]"},
        {"\xE9\n", "[\xE9]"},
    };
    for (const auto& row : rows) {
        QStringList lines{latin1("before")};
        appendOutputLines(row.output, &lines);
        EXPECT_EQ(lines.takeFirst(), latin1("before"));
        QByteArray text;
        for (const QString& line : lines) {
            EXPECT_EQ(line.isNull(), line.isEmpty());
            text += '[' + line.toLatin1() + ']';
        }
        EXPECT_EQ(text, QByteArray(row.lines)) << row.output.toPercentEncoding().constData();
    }
    QStringList lines;
    appendOutputLines(QByteArray("a\0b\n", 4), &lines);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].size(), 3);
}

TEST(ProcessRunner, ResultIsTheExitCode) {
    EXPECT_EQ(runShell("exit 0").code, 0);
    EXPECT_EQ(runShell("exit 3").code, 3);
    EXPECT_EQ(runShell("exit 127").code, 127);
    EXPECT_EQ(runShell("exit 128").code, -128);
    EXPECT_EQ(runShell("exit 255").code, -1);
    EXPECT_EQ(runShell("kill -9 $$").code, -1);

    const Result missing = run({latin1("no-such-program-anywhere")});
    EXPECT_EQ(missing.code, -1);
    EXPECT_TRUE(missing.out.isEmpty() && missing.err.isEmpty());
    EXPECT_EQ(run({}).code, -1);
    EXPECT_EQ(run({QString()}).code, -1);
    EXPECT_EQ(runProcess({latin1("false")}, true, QString(), nullptr, nullptr), 1);
}

TEST(ProcessRunner, WithoutWaitingGlances) {
    EXPECT_EQ(runProcess({latin1("sh"), latin1("-c"), latin1("sleep 0.3; exit 5")}, false, QString(), nullptr,
                         nullptr),
              0);
    while (waitpid(-1, nullptr, 0) > 0) {
    }
    EXPECT_EQ(errno, ECHILD);
}

TEST(ProcessRunner, CapturesBothStreamsByteForByte) {
    const Result result =
        run({latin1("sh"), latin1("-c"), latin1("printf \"$1\\n\"; printf 'e\\351\\n' >&2; pwd"),
             latin1("name"), latin1("\xE9 *")});
    EXPECT_EQ(result.code, 0);
    ASSERT_EQ(result.out.size(), 2);
    EXPECT_EQ(result.out[0], latin1("\xE9 *"));
    EXPECT_EQ(result.out[1].toStdString(), std::filesystem::current_path().string());
    EXPECT_EQ(result.err, QStringList{latin1("e\xE9")});

    QStringList out;
    QStringList err;
    EXPECT_EQ(runProcess({latin1("pwd")}, true, latin1("/"), &out, &err), 0);
    EXPECT_EQ(runProcess({latin1("echo"), latin1("on")}, true, latin1("/no/such/directory"), &out, &err), 0);
    EXPECT_EQ(out, (QStringList{latin1("/"), latin1("on")}));
}

TEST(ProcessRunner, LosesNothingOfTwoFullPipes) {
    const auto start = std::chrono::steady_clock::now();
    for (int round = 0; round < 20; ++round) {
        const Result result = runShell(R"(exec awk 'BEGIN {
            x = "................................................."
            for (i = 0; i < 20000; ++i) { print i x; print i x > "/dev/stderr" } }')");
        ASSERT_EQ(result.code, 0);
        for (const QStringList& lines : {result.out, result.err}) {
            ASSERT_EQ(lines.size(), 20000);
            for (int i = 0; i < 20000; ++i) {
                ASSERT_TRUE(lines[i].startsWith(QString::number(i) + u'.')) << i;
            }
        }
    }
    EXPECT_LT(secondsSince(start), 20);
}

TEST(ProcessRunner, AClosedStdoutEndsNeitherReadingNorWaiting) {
    const Result result =
        runShell("exec >&-; i=0; while [ $i -lt 4000 ]; do "
                 "echo 'a line of some forty characters, or so' >&2; i=$((i + 1)); done; exit 4");
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.err.size(), 4000);

    EXPECT_EQ(runShell("echo ab; exec >&- 2>&-; sleep 0.2; exit 6").code, 6);
}

TEST(ProcessRunner, AGrandchildWithStderrIsNotWaitedFor) {
    const auto start = std::chrono::steady_clock::now();
    const Result result = runShell("sleep 5 >&- & echo out; echo err >&2; exit 2");
    EXPECT_LT(secondsSince(start), 3);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, QStringList{latin1("out")});
    EXPECT_EQ(result.err, QStringList{latin1("err")});

    // One that never stops writing either.
    const Result endless = runShell("timeout 5 yes >&2 2>/dev/null & echo out; exit 2");
    EXPECT_EQ(endless.code, 2);
    const Result writing = runShell("{ exec >&-; timeout 5 yes >&2; } & echo out; exit 3");
    EXPECT_LT(secondsSince(start), 4);
    EXPECT_EQ(writing.code, 3);
    EXPECT_EQ(writing.out, QStringList{latin1("out")});
}

TEST(ProcessRunner, LeavesNoDescriptorAndNoZombie) {
    const auto before = openDescriptors();
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(run({latin1("true")}).code, 0);
        EXPECT_EQ(runProcess({latin1("true")}, true, QString(), nullptr, nullptr), 0);
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);

    // The child sees what it would inherit from anyone, and what `ls` opens itself.
    std::ptrdiff_t inherited = 0;
    for (int fd = 0; fd < 1024; ++fd) {
        const int flags = fcntl(fd, F_GETFD);
        inherited += flags >= 0 && (flags & FD_CLOEXEC) == 0 ? 1 : 0;
    }
    EXPECT_EQ(run({latin1("ls"), latin1("/proc/self/fd")}).out.size(), inherited + 1);
}
