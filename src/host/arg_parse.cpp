#include "host/arg_parse.h"

#include "system/files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

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
    if (tooMany_) {
        return;
    }
    if (indirectDepth_ == maxIndirectDepth || indirectFiles_ == maxIndirectFiles) {
        errorStream() << "too many indirect files\n";
        // A file that names itself twice would be told of 2^100 times on the way back. Once is enough.
        tooMany_ = true;
        return;
    }
    ++indirectFiles_;
    const UniqueFd file = openForReading(QString::fromLatin1(path));
    if (!file.isOpen()) {
        reportFile("can't open", path, errno);
        return;
    }
    const std::size_t left = maxIndirectBytes - indirectBytes_;
    const QByteArray content = readUpTo(file.get(), left + 1);
    if (const int reason = static_cast<std::size_t>(content.size()) > left ? EFBIG : errno; reason != 0) {
        reportFile("can't read", path, reason);
        return;
    }
    indirectBytes_ += static_cast<std::size_t>(content.size());
    ++indirectDepth_;
    std::string_view rest(content.constData(), static_cast<std::size_t>(content.size()));
    for (std::int32_t number = 1; !rest.empty(); ++number) {
        // A longer line comes in pieces, each a line of its own.
        const std::string line(rest.substr(0, std::min(rest.find('\n'), maxLineLength - 1) + 1));
        rest.remove_prefix(line.size());
        if (line[0] != '#') {
            parseArguments(tokenizeLine(path, number, line.c_str()), pass);
        }
    }
    --indirectDepth_;
    if (indirectDepth_ == 0) {
        tooMany_ = false;
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

void ArgParse::reportFile(const char* what, const char* path, int reason) {
    errorStream() << what << " indirect file " << path << ": " << std::strerror(reason) << '\n';
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
