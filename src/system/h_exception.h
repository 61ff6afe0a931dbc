// HException, a failure of the host side, as opposed to one of a script: main() prints "error: " and the
// text, and ends the run with status 1.
#pragma once

#include <string>
#include <utility>

class HException {
public:
    explicit HException(std::string text) : text_(std::move(text)) {}
    virtual ~HException() = default;

    const std::string& text() const { return text_; }

private:
    std::string text_;
};
