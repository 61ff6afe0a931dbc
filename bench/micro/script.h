// A context with a script function in it, for benchmarks of what the machine does.
#pragma once

#include "runtime/context.h"

#include <stdexcept>
#include <string>

class Script {
public:
    // The text must evaluate to a function. Throws std::runtime_error when it doesn't.
    explicit Script(const std::string& text) {
        ctx_.initContext();
        const ESCompletion made = ctx_.evaluate(QString::fromStdString(text));
        if (made.status != ESCompletion::normal || !made.value.isObject()) {
            throw std::runtime_error("no function: " + text);
        }
        function_ = made.value.object;
    }

    // Calls the function with the number.
    ESValue run(double argument) {
        const ESValue value = numberValue(argument);
        ESValue result = undefinedValue();
        ctx_.callFunction(function_, ctx_.globalObject, 1, &value, result);
        return result;
    }

private:
    ESContext ctx_;
    ESObject* function_ = nullptr;
};
