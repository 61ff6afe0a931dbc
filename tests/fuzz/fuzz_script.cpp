// Any text as a script, on the loop over the bytes, which can be bounded: it ends in a result, an error or at
// a limit.
#include "fuzz_target.h"
#include "script_run.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::int64_t mostSteps = 20'000;
    const QString text = latin1({data, size});
    const ScriptRun run = runScript(text, {ESExecutionForm::Bytes, mostSteps});
    // What is compiled from texts made at run time can grow beyond all limits.
    const bool compilesMore = text.contains(QLatin1String("al")) ||
                              text.contains(QLatin1String("Function")) ||
                              text.contains(QLatin1String("constructor"));
    expect(run.end != ScriptRun::End::TooLarge || run.output.ends_with("stack too small") || compilesMore ||
               size > 8192,
           "a short text is never too large for the instructions");
    return 0;
}
