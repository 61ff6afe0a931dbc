// How much of the native stack is left. The parser and the code generator recurse as deep as the text is
// nested, and `eval` nests whole compilations, so they ask before they go deeper.
#pragma once

// True when less is left than a compilation and the raising of its error may need.
bool nativeStackLow();
