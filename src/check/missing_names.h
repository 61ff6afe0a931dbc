// Names that people know from elsewhere and that do nothing here, or don't exist, each with what to write
// instead.
#pragma once

#include "runtime/atom.h"

#include <span>

struct MissingName {
    const char16_t* name;
    const char* advice;
};

extern const std::span<const MissingName> emptyMembers; // of strings
extern const std::span<const MissingName> emptyGlobals;
extern const std::span<const MissingName> missingMembers; // of functions, arrays, strings, numbers and dates
extern const std::span<const MissingName> missingGlobals;

// The row of a name, or null.
const MissingName* findName(std::span<const MissingName> names, ESAtom name);
