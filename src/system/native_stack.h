// How much of the native stack is left. The parser and the code generator recurse as deep as the text is
// nested, and natives that come back into script as deep as a script likes, so they ask before they go
// deeper.
#pragma once

#include <cstddef>

// True when less is left than a compilation, a native function and the raising of an error may need.
bool nativeStackLow();

// The bytes that are left, for those who know what they need.
std::size_t nativeStackLeft();
