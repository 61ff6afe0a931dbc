// Where errors of the command line go, and how many there were. One record serves the process; arg_parse.h
// writes through it.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

struct ErrorReporter {
    std::string programName; // as typed
    std::ostream* stream = nullptr;
    std::int32_t errorCount = 0;
};

// Set by runQuorvane before anything is parsed, and never freed.
inline ErrorReporter* errorReporter = nullptr;
