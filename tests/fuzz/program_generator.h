// Makes a program of the dialect from bytes: every byte decides something, and any bytes give a text that the
// parser takes. Loops of the program's own making end; what recurses or eats memory is for the bounds of a
// run.
#pragma once

#include <cstdint>
#include <span>
#include <string>

// Statements until the bytes are used up, then the values of all variables.
std::string generateProgram(std::span<const std::uint8_t> bytes);
