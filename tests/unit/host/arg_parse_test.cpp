#include "host/arg_parse.h"

#include "host/run.h"
#include "runtime/context.h"
#include "runtime/failures.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// An option of each kind, in two passes, and what they leave behind as text.
class Recorder : public ArgParse {
public:
    explicit Recorder(ErrorReporter& target) : ArgParse(target) {
        const auto log = [this](const char* option, const char* argument) {
            seen +=
                std::string("[") + option + (argument == nullptr ? "" : std::string("=") + argument) + ']';
        };
        options["-flag"] = {.handler = log};
        options["-set"] = {.kind = ArgOptionKind::Separate, .handler = log};
        options["-D"] = {.kind = ArgOptionKind::Joined, .handler = log};
        options["-Debug"] = {.kind = ArgOptionKind::Joined, .handler = log};
        options["-late"] = {.kind = ArgOptionKind::Separate, .handler = log, .pass = 2};
        options["-value"] = {.kind = ArgOptionKind::Separate, .valueTarget = &value, .flagTarget = &flag};
    }

    std::string seen;
    const char* value = "";
    bool flag = false;

protected:
    void nonOption(const char* word) override { seen += std::string("(") + word + ')'; }
};

} // namespace

// Each text is a line of words, and a second one is walked in the second pass.
TEST(ArgParse, WordsAndOptionsOfEveryKind) {
    std::string many;
    std::string seenOfMany;
    for (std::size_t i = 0; i < ArgParse::maxLineWords; ++i) {
        many += "w ";
        seenOfMany += "(w)";
    }
    const struct {
        std::string line;
        std::string seen;
        const char* message = "";
    } rows[] = {
        {"", ""},
        {"   \n", ""},
        {"a  b\nc", "(a)(b)"},
        {"a\tb # \n", "(a\tb)(#)"},
        {"\"a b\" c\n", "(a b)(c)"},
        {"\"abc\"def\"\"\n", "(abc)(def\"\")"},
        {"\"\" \"a\\\"\n", "()(a\\)"},
        {"a ", "(a)()"}, // no line end
        {"a \"b\n", "", "unterminated string in command line"},
        {many + "\n", seenOfMany},
        {many + "\"w\"\n", "", "too many words in command line"},
        {"a -flag b", "(a)[-flag](b)"},
        {"-set x -set -flag", "[-set=x][-set=-flag]"},
        {"-Dx=1 -D -Debug2", "[-D=x=1][-D=][-D=ebug2]"}, // -D comes first in the table
        {"-Debug", "[-Debug=]"},                         // but the exact text comes before that
        {"-late x y", "(y)"},
        {"a -set", "(a)", "expected argument for option -set"},
    };
    for (const auto& row : rows) {
        std::ostringstream messages;
        ErrorReporter reporter{"host", &messages, 0};
        Recorder parser(reporter);
        parser.parseCommandString(row.line.c_str(), 1);
        EXPECT_EQ(parser.seen, row.seen) << row.line;
        EXPECT_EQ(messages.str(),
                  *row.message == '\0' ? "" : std::string("host: error: ") + row.message + '\n');
        EXPECT_EQ(reporter.errorCount, *row.message == '\0' ? 0 : 1);
    }
    ErrorReporter reporter;
    Recorder parser(reporter);
    parser.parseCommandString("-late x -value v", 2);
    EXPECT_EQ(parser.seen + parser.value, "[-late=x]");
    parser.parseCommandString("-value \"v w\"", 1);
    EXPECT_TRUE(parser.flag);
    EXPECT_STREQ(parser.value, "v w");
}

// Scripts can only fail with error objects, so the other values come from here.
TEST(ReportResult, TextOfAFailure) {
    ESContext context;
    context.initContext();
    const std::pair<ESValue, const char*> rows[] = {
        {numberValue(1.5), "uncaught exception - 1.5"},
        {objectValue(context.newPlainObject()), "uncaught exception - [object Object]"},
    };
    for (const auto& [value, text] : rows) {
        try {
            reportResult(context, ESCompletion{ESCompletion::exception, value, {}});
            ADD_FAILURE() << text;
        } catch (const HException& failure) {
            EXPECT_EQ(failure.text(), text);
        }
    }
}
