#include "host/arg_parse.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

} // namespace

void ArgParse::parseArguments(std::span<const char* const> words, std::int32_t pass) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const char* const word = words[i];
        const char* value = nullptr;
        const OptionEntry* found = nullptr;
        if (const auto exact = options.find(word); exact != options.end()) {
            found = &*exact;
            if (found->second.kind == ArgOptionKind::Joined) {
                value = word + found->first.size();
            } else if (found->second.kind == ArgOptionKind::Separate) {
                if (i + 1 == words.size()) {
                    errorStream() << "expected argument for option " << word << '\n';
                    return;
                }
                value = words[++i];
            }
        } else if ((found = findJoined(word)) != nullptr) {
            value = word + found->first.size();
        }

        if (found == nullptr) {
            if (*word == '@') {
                parseIndirectFile(word + 1, pass);
            } else if (*word == '-') {
                errorStream() << "unrecognised option " << word << '\n';
            } else {
                nonOption(word);
            }
            continue;
        }
        const ArgOption& option = found->second;
        if (option.pass != pass) {
            continue;
        }
        if (option.handler) {
            option.handler(found->first.data(), value);
            continue;
        }
        if (option.flagTarget != nullptr) {
            *option.flagTarget = true;
        }
        if (option.valueTarget != nullptr) {
            *option.valueTarget = value;
        }
    }
}

const ArgParse::OptionEntry* ArgParse::findJoined(std::string_view word) const {
    for (const OptionEntry& entry : options) {
        if (entry.second.kind == ArgOptionKind::Joined && word.starts_with(entry.first)) {
            return &entry;
        }
    }
    return nullptr;
}

void ArgParse::parseIndirectFile(const char* path, std::int32_t pass) {
    if (tooDeep_) {
        return;
    }
    if (indirectDepth_ == maxIndirectDepth) {
        errorStream() << "too many indirect files\n";
        // A file that names itself twice would be opened 2^100 times on the way back. Once is enough to tell.
        tooDeep_ = true;
        return;
    }
    const std::unique_ptr<FILE, FileCloser> file(std::fopen(path, "re"));
    if (file == nullptr) {
        const int reason = errno;
        errorStream() << "can't open indirect file " << path << ": " << std::strerror(reason) << '\n';
        return;
    }
    ++indirectDepth_;
    std::array<char, 1024> line; // a longer line comes in pieces, each a line of its own
    for (std::int32_t number = 1; std::fgets(line.data(), int{line.size()}, file.get()) != nullptr;
         ++number) {
        if (line[0] != '#') {
            parseArguments(tokenizeLine(path, number, line.data()), pass);
        }
    }
    --indirectDepth_;
    if (indirectDepth_ == 0) {
        tooDeep_ = false;
    }
}

void ArgParse::parseCommandString(const char* text, std::int32_t pass) {
    parseArguments(tokenizeLine(nullptr, 0, text), pass);
}

std::vector<const char*> ArgParse::tokenizeLine(const char* path, std::int32_t lineNumber, const char* line) {
    std::vector<const char*> words;
    for (const char* at = line; *at != '\0' && *at != '\n';) {
        at += std::strspn(at, " ");
        if (*at == '\n') {
            break;
        }
        const bool quoted = *at == '"';
        at += quoted ? 1 : 0;
        // Blanks that run into the end without a newline leave an empty word.
        const std::size_t length = std::strcspn(at, quoted ? "\"\n" : " \n");
        if (quoted && at[length] != '"') {
            reportLine("unterminated string in ", path, lineNumber);
            return {};
        }
        if (words.size() == maxLineWords) {
            reportLine("too many words in ", path, lineNumber);
            return {};
        }
        words.push_back(ownedWords_.emplace_back(at, length).c_str());
        at += length + (quoted ? 1 : 0);
    }
    return words;
}

void ArgParse::reportLine(const char* text, const char* path, std::int32_t lineNumber) {
    std::ostream& stream = errorStream() << text;
    if (path != nullptr) {
        stream << "indirect file " << path << '(' << lineNumber << ")\n";
    } else {
        stream << "command line\n";
    }
}

std::ostream& ArgParse::errorStream() {
    ++reporter_.errorCount;
    return *reporter_.stream << reporter_.programName << ": error: ";
}
