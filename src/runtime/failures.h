// The three types that travel when something fails: a script's error (ESException), a fault of the
// system itself (ESFatalError) and a failure of the host side (HException). Every station throws one of
// them; ESContext::raiseError in context.h is the only thrower of the first.
#pragma once

#include "runtime/value.h"

#include <QString>
#include <string>
#include <utility>

// Carries an error object of the script. Thrown by value; evaluate() turns it into a completion.
struct ESException {
    ESValue value; // always an object
};

// An internal fault. Nothing below main() catches it, and nobody reads what it holds at run time.
struct ESFatalError {
    QString message;
    std::int32_t line = 0; // of the text that cannot be compiled; 0 elsewhere
};

// A failure of the host side: main() prints "error: " and the text, and ends the run with status 1.
class HException {
public:
    explicit HException(std::string text) : text_(std::move(text)) {}
    virtual ~HException() = default;

    const std::string& text() const { return text_; }

private:
    std::string text_;
};
