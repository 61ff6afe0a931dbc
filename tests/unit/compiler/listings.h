// Code in a form that is short enough for a table: the instructions of a block between commas, slots without
// their index, functions counted from the first of the text, made-up names as CG, and in front of every
// instruction that is jumped to its offset.
#pragma once

#include <QString>
#include <string>
#include <vector>

class ESContext;

// One for each block of the text, in the order in which they are finished: inner functions first, the program
// last.
std::vector<std::string> listingsOf(ESContext& ctx, const QString& text);
