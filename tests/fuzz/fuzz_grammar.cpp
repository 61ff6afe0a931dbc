// The bytes drive a generator of programs, and both forms of the machine must run each to the same end. With
// QUORVANE_FUZZ_SHOW set, the program is printed.
#include "fuzz_target.h"
#include "program_generator.h"
#include "script_run.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::int64_t mostSteps = 20'000;
    const std::string program = generateProgram({data, size});
    static const bool show = std::getenv("QUORVANE_FUZZ_SHOW") != nullptr;
    if (show) {
        std::fputs(program.c_str(), stderr);
    }
    const QString text = QString::fromLatin1(program.data(), static_cast<qsizetype>(program.size()));
    // Bounded first; what came to an end there does so in the form that can't be bounded.
    const ScriptRun reference = runScript(text, {ESExecutionForm::Bytes, mostSteps});
    if (reference.end == ScriptRun::End::OutOfSteps || reference.end == ScriptRun::End::OutOfMemory) {
        return 0;
    }
    const ScriptRun fused = runScript(text, {ESExecutionForm::Fused, 0});
    if (fused.end == ScriptRun::End::OutOfMemory) {
        return 0;
    }
    if (show || reference.output != fused.output) {
        std::fprintf(stderr, "-- bytes\n%s\n-- fused\n%s\n", reference.output.c_str(), fused.output.c_str());
    }
    expect(reference.end == fused.end && reference.output == fused.output, "both forms run to the same end");
    expect(reference.output.find(": expected ") == std::string::npos, "the parser takes a generated program");
    return 0;
}
