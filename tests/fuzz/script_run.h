// One script in a context of its own, within bounds of steps and memory, and without a way to the system: the
// members that open files or start programs convert their arguments and do nothing more. ElfFile.load always
// loads the image of examples/firmware. Each run finds the process as if it were the first.
#pragma once

#include "runtime/context.h"

#include <cstdint>
#include <string>

struct ScriptBounds {
    ESExecutionForm form = ESExecutionForm::Bytes;
    std::int64_t steps = 0; // instructions; 0 for no bound, which the fused form needs
};

struct ScriptRun {
    enum class End {
        Finished, // by a result, or an error of the script or the host objects
        TooLarge, // more than the stacks hold, or than 16 bits can number
        OutOfSteps,
        OutOfMemory,
    };
    End end = End::Finished;
    std::string output; // what WScript.Echo printed, up to a bound, and how the run ended
};

// Ends the process for any other fault of the engine.
ScriptRun runScript(const QString& text, ScriptBounds bounds);
