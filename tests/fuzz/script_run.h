// One script in a context of its own, within bounds of steps and memory, and without a way to the system: the
// members that open files or start programs convert their arguments and do nothing more. ElfFile.load always
// loads one small image from memory. Each run finds the process as if it were the first.
#pragma once

#include "runtime/context.h"

#include <cstdint>
#include <memory>
#include <string>

struct ScriptBounds {
    ESExecutionForm form = ESExecutionForm::Bytes;
    std::int64_t steps = 0; // instructions; 0 for no bound, which the fused form needs
};

struct ScriptRun {
    enum class End {
        Result,
        Error,      // of the script, or of the host objects
        StackSmall, // the run needs more of the machine's or the native stack
        TooLarge,   // the text is more than 16 bits can number
        OutOfSteps,
        OutOfMemory,
    };
    End end;
    std::string output; // what WScript.Echo printed, up to a bound, and how the run ended
};

// Ends the process for any other fault of the engine.
ScriptRun runScript(const QString& text, ScriptBounds bounds);

// The host objects as they are here; they must outlive the context.
class HostObjects {
public:
    // Takes what WScript.Echo prints.
    explicit HostObjects(std::string& output);
    ~HostObjects();
    void addTo(ESContext& ctx);

private:
    struct Classes;
    std::unique_ptr<Classes> classes_;
};
