// Reading a mangled name piece by piece.
#pragma once

#include <string_view>

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The part of a name that hasn't been read yet.
class NameCursor {
public:
    explicit NameCursor(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    // NUL at the end, which no name holds.
    char peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    std::string_view rest() const { return rest_; }

    bool take(char c) {
        if (rest_.empty() || rest_.front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }
    bool take(std::string_view text) {
        if (!rest_.starts_with(text)) {
            return false;
        }
        rest_.remove_prefix(text.size());
        return true;
    }

protected:
    std::string_view rest_;
};
