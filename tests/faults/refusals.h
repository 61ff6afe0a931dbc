// Requests to the system that are refused on command: for memory, or on files. The definitions in
// refusals.cpp stand in for those of the C and C++ libraries in the whole process, so what Qt and libstdc++
// ask for is counted as well. Removing a file is never refused.
#pragma once

#include <sys/types.h>

struct Refusals {
    enum Kind { Nothing, Memory, Files };
    enum Way {
        Once,
        FromThenOn,
        Kill, // nothing is refused, but the process is killed; a child goes on
    };

    Kind kind = Nothing;
    Way way = Once;
    long first = 0;    // the number of the request that is refused, from 1; 0 for none
    long requests = 0; // of the kind, since the start
    pid_t process = 0;
};

inline Refusals refusals;
