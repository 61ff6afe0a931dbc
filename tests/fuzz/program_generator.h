// Makes a program of the dialect from bytes: every byte decides something, and any bytes give a text that the
// parser takes. Loops of the program's own making end; what recurses or eats memory is for the bounds of a
// run.
#pragma once

#include "fuzz_target.h"

#include <string>
#include <vector>

class ProgramGenerator {
public:
    explicit ProgramGenerator(std::span<const std::uint8_t> bytes) : choices_(bytes) {}

    // Statements until the bytes are used up, then the values of all variables. To be called once.
    std::string program();

private:
    // `depth` is how far a part may nest.
    void statement(int depth);
    void simpleStatement(int depth);
    void nestingStatement(int depth);
    void block(int depth);
    void loop(int depth);
    void forIn(int depth);
    void switchStatement(int depth);
    void functionStatement(int depth);
    void jump();

    std::string expression(int depth);
    std::string operation(int depth);
    std::string literal();
    std::string place(int depth); // that can be assigned to
    std::string name();
    std::string member();
    std::string call(int depth);
    std::string nativeCall(int depth);
    std::string arguments(int depth);
    std::string functionExpression(int depth);
    std::string evaluated(int depth);

    template <std::size_t count>
    const char* pick(const char* const (&texts)[count]) {
        return texts[choices_.below(count)];
    }

    Choices choices_;
    std::string text_;
    int loops_ = 0;                   // so far; they give their variables and labels a number
    std::vector<std::string> labels_; // of the loops around this place within its function, empty for none
    int functions_ = 0;               // around this place
};
