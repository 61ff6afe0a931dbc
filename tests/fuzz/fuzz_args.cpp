// The command line: words up to the first empty line, then the text of the one indirect file that there is,
// which "@" alone names. Errors are counted as they are printed, and words that are no options stay in order.
#include "fuzz_target.h"
#include "host/quorvane_arg_parse.h"

#include <sys/mman.h>
#include <unistd.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr char programName[] = "\001"; // which no input has

class Parser : public QuorvaneArgParse {
public:
    explicit Parser(ErrorReporter& reporter) : QuorvaneArgParse(reporter) {
        options["-help"] = {.flagTarget = &help, .pass = onlyPass}; // the program's own ends it
        options["-j"] = {.kind = ArgOptionKind::Joined, .valueTarget = &joined, .pass = onlyPass};
        options["-later"] = {.kind = ArgOptionKind::Separate, .valueTarget = &joined, .pass = onlyPass + 1};
    }

    bool help = false;
    const char* joined = "";
};

// A file that never sees a disk; it lasts as long as the process.
class IndirectFile {
public:
    IndirectFile()
        : fd_(memfd_create("options", MFD_CLOEXEC)), path("/proc/self/fd/" + std::to_string(fd_)) {}
    void write(const std::string& text) const {
        expect(ftruncate(fd_, 0) == 0 &&
                   pwrite(fd_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()),
               "the indirect file can be written");
    }

private:
    int fd_;

public:
    const std::string path;
};

// With the path behind each "@", so that no other file is ever opened.
std::string withPath(std::string_view text, const std::string& path) {
    std::string result;
    for (const char c : text) {
        result += c == '@' ? "@" + path : std::string(1, c == programName[0] ? '.' : c);
    }
    return result;
}

std::vector<std::string> linesOf(std::string_view text) {
    std::istringstream stream{std::string(text.substr(0, text.find('\0')))};
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::int32_t countErrors(const std::string& printed) {
    std::int32_t count = 0;
    for (std::size_t at = 0;
         (at = printed.find(std::string(programName) + ": error: ", at)) != std::string::npos; ++at) {
        ++count;
    }
    return count;
}

void checkQuotedWords(const std::vector<std::string>& words, Parser& parser) {
    std::string line;
    std::vector<std::string> expected;
    for (const std::string& word : words) {
        if (word.find('"') == std::string::npos && expected.size() < ArgParse::maxLineWords) {
            line += " \"" + word + '"';
            expected.push_back(word);
        }
    }
    const std::vector<const char*> found = parser.tokenizeLine(nullptr, 0, line.c_str());
    expect(std::vector<std::string>(found.begin(), found.end()) == expected, "quoted words come back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const IndirectFile file;
    const std::string_view text = textOf({data, size});
    const std::size_t cut = std::min(text.find("\n\n"), text.size());
    file.write(withPath(text.substr(std::min(cut + 2, text.size())), file.path));
    const std::vector<std::string> lines = linesOf(withPath(text.substr(0, cut), file.path));

    std::ostringstream printed;
    ErrorReporter reporter{programName, &printed};
    Parser parser(reporter);
    std::vector<const char*> words;
    bool plain = true;
    for (const std::string& line : lines) {
        words.push_back(line.c_str());
        plain = plain && line.find_first_of("-@") != 0;
    }
    parser.parseArguments(words, QuorvaneArgParse::onlyPass);
    expect(countErrors(printed.str()) == reporter.errorCount, "every error that counts is printed");
    expect(printed.str().empty() || printed.str().back() == '\n', "the last message has its line end");
    if (plain) {
        expect(reporter.errorCount == 0 &&
                   parser.scriptArguments.size() == static_cast<qsizetype>(words.size()),
               "words that are no options are the script's");
    }
    checkQuotedWords(lines, parser);
    return 0;
}
