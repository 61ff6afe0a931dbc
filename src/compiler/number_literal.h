// Number literals: decimal ones with fraction and exponent, octal ones (leading 0) and hexadecimal ones (0x).
#pragma once

// Reads the literal at `at`, where a digit stands or a point before a digit, and moves `at` behind it. An
// exponent without digits is taken and dropped; 0x alone is NaN. Nothing is asked of what follows.
double readNumberLiteral(const char16_t*& at, const char16_t* end);
