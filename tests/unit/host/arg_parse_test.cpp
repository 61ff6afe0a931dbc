#include "host/arg_parse.h"

#include "support/rows.h"

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
    std::vector<Row> rows = rowsOf("host/words.table", "words");
    rows.push_back({many + "\n", seenOfMany});
    rows.push_back({many + "\"w\"\n", "host: error: too many words in command line\n"});
    for (const Row& row : rows) {
        std::ostringstream messages;
        ErrorReporter reporter{"host", &messages, 0};
        Recorder parser(reporter);
        parser.parseCommandString(row.text.c_str(), 1);
        EXPECT_EQ(parser.seen + messages.str(), row.expected) << row.text;
        EXPECT_EQ(reporter.errorCount, messages.str().empty() ? 0 : 1);
    }
    ErrorReporter reporter;
    Recorder parser(reporter);
    parser.parseCommandString("-late x -value v", 2);
    EXPECT_EQ(parser.seen + parser.value, "[-late=x]");
    parser.parseCommandString("-value \"v w\"", 1);
    EXPECT_TRUE(parser.flag);
    EXPECT_STREQ(parser.value, "v w");
}
