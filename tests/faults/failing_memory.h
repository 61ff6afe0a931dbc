// Memory that runs out on command. The definitions in failing_memory.cpp stand in for those of the C and C++
// libraries in the whole process, so what Qt and libstdc++ ask for is counted as well.
#pragma once

struct FailingMemory {
    long requests = 0;       // for memory since the start
    long failing = 0;        // the number of the first request to be refused; 0 for none
    bool fromThenOn = false; // all later ones too
};

inline FailingMemory failingMemory;
