// A general command-line parser: a table of options, a walk over words, and indirect files that hold further
// words. Errors are counted and written through the reporter, not thrown, so that one run shows all of them.
// quorvane_arg_parse.h is the program's own table.
#pragma once

#include "host/error_reporter.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class ArgOptionKind {
    Flag,     // no value
    Separate, // the value is the next word
    Joined,   // the value is the rest of the same word
};

struct ArgOption {
    ArgOptionKind kind = ArgOptionKind::Flag;
    // Called with the option's text and its value, which is null for a flag. Instead of the two targets.
    std::function<void(const char* option, const char* value)> handler = nullptr;
    const char** valueTarget = nullptr; // what it receives lives as long as the words, or as the parser
    bool* flagTarget = nullptr;         // set to true
    std::int32_t pass = 1;              // has an effect only in the walk with this number
};

class ArgParse {
public:
    static constexpr std::int32_t maxIndirectDepth = 100;
    static constexpr std::int32_t maxIndirectFiles = 4096;                // opened by one parser
    static constexpr std::size_t maxIndirectBytes = std::size_t{1} << 24; // read by one parser
    static constexpr std::size_t maxLineLength = 1023;
    static constexpr std::size_t maxLineWords = 256;

    explicit ArgParse(ErrorReporter& target) : reporter_(target) {}
    ArgParse(const ArgParse&) = delete;
    ArgParse& operator=(const ArgParse&) = delete;
    virtual ~ArgParse() = default;

    // Walks the words, without the program's name. Options and other words may mix freely.
    void parseArguments(std::span<const char* const> words, std::int32_t pass);
    // Walks the words of each line of a file by itself. Lines that begin with "#" are comments. A file that
    // passes a limit has no effect but the error.
    void parseIndirectFile(const char* path, std::int32_t pass);
    // Walks the words of the text, taken as one line.
    void parseCommandString(const char* text, std::int32_t pass);
    // The words of one line, which ends at a NUL or a newline. They belong to the parser. None after an
    // error; `path` and `lineNumber` are for the message, and a null path stands for the command line.
    std::vector<const char*> tokenizeLine(const char* path, std::int32_t lineNumber, const char* line);

protected:
    // A word that is no option.
    virtual void nonOption(const char* word) = 0;
    // Counts an error and begins its line; the caller writes the message and ends the line.
    virtual std::ostream& errorStream();

    std::map<std::string_view, ArgOption> options;

private:
    using OptionEntry = std::map<std::string_view, ArgOption>::value_type;

    const OptionEntry* findJoined(std::string_view word) const;
    void reportFile(const char* what, const char* path, int reason);
    void reportLine(const char* text, const char* path, std::int32_t lineNumber);

    ErrorReporter& reporter_;
    std::int32_t indirectDepth_ = 0; // indirect files open at this moment
    std::int32_t indirectFiles_ = 0; // and all in all
    std::size_t indirectBytes_ = 0;
    bool tooMany_ = false; // a limit was met below the outermost of them
    std::deque<std::string> ownedWords_;
};
