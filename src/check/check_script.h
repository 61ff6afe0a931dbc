// The check of one text: its syntax error with a hint, or else what the rules say; and its listing.
#pragma once

#include "check/report.h"

#include <ostream>

// In order of lines, a note behind its error, without what the script asks to ignore. With a stream, the
// bytecode of a script without errors is printed to it: first the program, then the functions in order of
// their beginnings. `path` heads each. What an engine throws that is short of memory goes through.
Reports checkScript(const QString& text, const char* path, std::ostream* listing);
