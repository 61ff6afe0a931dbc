#include "host/arg_parse.h"

#include "host/quorvane_arg_parse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

ErrorReporter reporterOn(std::ostream& stream) { return {"host", &stream, 0}; }

std::string bracketed(const std::vector<const char*>& words) {
    std::string text;
    for (const char* word : words) {
        text += std::string("[") + word + ']';
    }
    return text;
}

std::string bracketed(const QStringList& words) {
    std::string text;
    for (const QString& word : words) {
        text += '[' + word.toLatin1().toStdString() + ']';
    }
    return text;
}

// An option of each kind, in two passes, and what they leave behind as text.
class Recorder : public ArgParse {
public:
    explicit Recorder(ErrorReporter& target) : ArgParse(target) {
        options["-flag"] = {.handler = log(), .pass = 1};
        options["-set"] = {.kind = ArgOptionKind::Separate, .handler = log(), .pass = 1};
        options["-D"] = {.kind = ArgOptionKind::Joined, .handler = log(), .pass = 1};
        options["-Debug"] = {.kind = ArgOptionKind::Joined, .handler = log(), .pass = 1};
        options["-late"] = {.kind = ArgOptionKind::Separate, .handler = log(), .pass = 2};
        options["-value"] = {
            .kind = ArgOptionKind::Separate, .valueTarget = &value, .flagTarget = &flag, .pass = 1};
    }

    std::string seen;
    const char* value = nullptr;
    bool flag = false;

protected:
    void nonOption(const char* word) override { seen += std::string("(") + word + ')'; }

private:
    std::function<void(const char*, const char*)> log() {
        return [this](const char* option, const char* argument) {
            seen +=
                std::string("[") + option + (argument == nullptr ? "" : std::string("=") + argument) + ']';
        };
    }
};

class IndirectFiles : public testing::Test {
protected:
    IndirectFiles() {
        std::string pattern = testing::TempDir() + "arg_parse_XXXXXX";
        folder = mkdtemp(pattern.data());
    }
    ~IndirectFiles() override { std::filesystem::remove_all(folder); }

    std::string write(const char* name, const std::string& content) const {
        std::string path = folder + '/' + name;
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    // What the program's parser makes of the words: scripts, loads and defines, then the messages.
    std::string parse(const std::vector<const char*>& words) {
        std::ostringstream messages;
        ErrorReporter reporter = reporterOn(messages);
        QuorvaneArgParse parser(reporter);
        parser.parseArguments(words, QuorvaneArgParse::onlyPass);
        errors = reporter.errorCount;
        return bracketed(parser.scriptArguments) + " load" + bracketed(parser.loads) + " define" +
               bracketed(parser.defines) + '\n' + messages.str();
    }

    std::string folder;
    int errors = 0;
};

} // namespace

TEST(ArgParse, OptionsOfEveryKind) {
    const struct {
        std::vector<const char*> words;
        const char* seen;
        const char* messages;
    } rows[] = {
        {{}, "", ""},
        {{"a", "-flag", "b"}, "(a)[-flag](b)", ""},
        {{"-set", "x", "-set", "-flag"}, "[-set=x][-set=-flag]", ""},
        {{"-Dx=1", "-D", "-Debug2"}, "[-D=x=1][-D=][-D=ebug2]", ""}, // -D comes first in the table
        {{"-Debug"}, "[-Debug=]", ""},                               // but the exact text comes before that
        {{"-late", "x", "y"}, "(y)", ""},
        {{"-flagx", "-", "--", "a"},
         "(a)",
         "host: error: unrecognised option -flagx\n"
         "host: error: unrecognised option -\n"
         "host: error: unrecognised option --\n"},
        {{"a", "-set"}, "(a)", "host: error: expected argument for option -set\n"},
        {{"-late"}, "", "host: error: expected argument for option -late\n"},
        {{"", "a b"}, "()(a b)", ""},
    };
    for (const auto& row : rows) {
        std::ostringstream messages;
        ErrorReporter reporter = reporterOn(messages);
        Recorder parser(reporter);
        parser.parseArguments(row.words, 1);
        EXPECT_EQ(parser.seen, row.seen);
        EXPECT_EQ(messages.str(), row.messages);
        EXPECT_EQ(reporter.errorCount, std::ranges::count(messages.str(), '\n'));
    }

    std::ostringstream messages;
    ErrorReporter reporter = reporterOn(messages);
    Recorder parser(reporter);
    parser.parseArguments(std::vector<const char*>{"-late", "x", "-value", "v"}, 2);
    EXPECT_EQ(parser.seen, "[-late=x]");
    EXPECT_FALSE(parser.flag);
    parser.parseCommandString("-value \"v w\" rest", 1);
    EXPECT_STREQ(parser.value, "v w");
    EXPECT_TRUE(parser.flag);
    EXPECT_EQ(parser.seen, "[-late=x](rest)");
    parser.parseCommandString("a \"b", 1);
    EXPECT_EQ(parser.seen, "[-late=x](rest)");
    EXPECT_EQ(messages.str(), "host: error: unterminated string in command line\n");
}

TEST(ArgParse, WordsOfALine) {
    std::string many;
    std::string bracketedMany;
    for (int i = 0; i < 256; ++i) {
        many += "w ";
        bracketedMany += "[w]";
    }
    const struct {
        std::string line;
        std::string words;
        const char* message;
    } rows[] = {
        {"", "", ""},
        {"\n", "", ""},
        {"   \n", "", ""},
        {"a  b\n", "[a][b]", ""},
        {"a\nb", "[a]", ""},
        {"a\tb\n", "[a\tb]", ""},
        {" # a\n", "[#][a]", ""},
        {"\"a b\" c\n", "[a b][c]", ""},
        {"\"abc\"def\n", "[abc][def]", ""},
        {"\"a\"\"b\"\n", "[a][b]", ""},
        {"a\"b c\"\n", "[a\"b][c\"]", ""},
        {"\"\" x\n", "[][x]", ""},
        {"\"a\\\"\n", "[a\\]", ""},
        {"a ", "[a][]", ""}, // no line end
        {"  ", "[]", ""},
        {"a \n", "[a]", ""},
        {"\"a\"", "[a]", ""},
        {"a \"b\n", "", "unterminated string in indirect file f(7)"},
        {"a \"", "", "unterminated string in indirect file f(7)"},
        {many + "\n", bracketedMany, ""},
        {many + "\"w\"\n", "", "too many words in indirect file f(7)"},
    };
    for (const auto& row : rows) {
        std::ostringstream messages;
        ErrorReporter reporter = reporterOn(messages);
        Recorder parser(reporter);
        EXPECT_EQ(bracketed(parser.tokenizeLine("f", 7, row.line.c_str())), row.words) << row.line;
        const std::string message = row.message;
        EXPECT_EQ(messages.str(), message.empty() ? "" : "host: error: " + message + "\n") << row.line;
    }
}

TEST_F(IndirectFiles, LinesAreWalkedOneByOne) {
    const std::string inner = write("inner", "deep\n");
    const std::string file = write("file", "# -bogus\n-load \"a b.js\" one\n\n #x\n-define n=1 @" + inner +
                                               "\n-load\n\"open\n-bogus\nlast");
    const std::string at = '@' + file;
    EXPECT_EQ(parse({"first", at.c_str(), "after"}),
              "[first][one][#x][deep][last][after] load[a b.js] define[n=1]\n"
              "host: error: expected argument for option -load\n"
              "host: error: unterminated string in indirect file " +
                  file +
                  "(7)\n"
                  "host: error: unrecognised option -bogus\n");
    EXPECT_EQ(errors, 3);
    EXPECT_EQ(parse({"-load", "@x", "caf\xE9"}), "[caf\xE9] load[@x] define\n");
}

TEST_F(IndirectFiles, LongLinesComeInPieces) {
    // 1023 characters a piece: the word is cut there, and a "#" that happens to begin a piece hides it.
    const std::string at =
        '@' + write("long", std::string(1024, 'x') + "\n" + std::string(1023, 'y') + "#z\n");
    EXPECT_EQ(parse({at.c_str()}),
              '[' + std::string(1023, 'x') + "][x][" + std::string(1023, 'y') + "] load define\n");
    const std::string numbered = '@' + write("numbered", std::string(2000, 'x') + "\n\"");
    EXPECT_NE(parse({numbered.c_str()}).find("(3)\n"), std::string::npos);
}

TEST_F(IndirectFiles, TroubleWithFiles) {
    EXPECT_EQ(parse({"@", "a"}),
              "[a] load define\nhost: error: can't open indirect file : No such file or directory\n");
    EXPECT_EQ(parse({"@/no/such"}),
              " load define\nhost: error: can't open indirect file /no/such: No such file or directory\n");
    const std::string path = folder + "/self";
    write("self", "w @" + path + " @" + path + "\n");
    const std::string at = '@' + path;
    std::string words;
    for (int i = 0; i < 100; ++i) {
        words += "[w]";
    }
    EXPECT_EQ(parse({at.c_str()}), words + " load define\nhost: error: too many indirect files\n");
    EXPECT_EQ(
        parse({at.c_str(), at.c_str()}),
        words + words +
            " load define\nhost: error: too many indirect files\nhost: error: too many indirect files\n");
    EXPECT_EQ(errors, 2);
}

TEST(QuorvaneArgParse, HelpEndsTheRun) {
    std::ostringstream messages;
    ErrorReporter reporter = reporterOn(messages);
    QuorvaneArgParse parser(reporter);
    EXPECT_EXIT(
        parser.parseArguments(std::vector<const char*>{"-bogus", "-help"}, QuorvaneArgParse::onlyPass),
        testing::ExitedWithCode(0),
        "^Tamberlin for ARM Quorvane - Release [0-9]+(\\.[0-9]+){4}\n.+\n\nUsage: ");
    parser.parseArguments(std::vector<const char*>{"-verbose"}, QuorvaneArgParse::onlyPass);
    EXPECT_TRUE(parser.verbose);

    std::ostringstream help;
    printHelp(help);
    const std::string text = help.str();
    EXPECT_EQ(text.substr(text.find("\n\n") + 1), "\nUsage: quorvane [options] script\n"
                                                  "\n"
                                                  "  -define 'variable'='value'  Define a global variable\n"
                                                  "  -help                       Print options help\n"
                                                  "  -load 'file'                Load a script file\n"
                                                  "  -verbose                    Produce verbose output\n"
                                                  "\n");
}
