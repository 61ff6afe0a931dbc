// Compile and run: where compiler and machine meet.
#include "compiler/compilation.h"
#include "machine/operators.h"
#include "runtime/context.h"
#include "system/native_stack.h"

namespace {

// The machine's registers, put back as they were at entry: a run that failed has left them anywhere.
class RegisterGuard {
public:
    explicit RegisterGuard(ESContext& ctx)
        : ctx_(ctx), acc_(ctx.acc), sp_(ctx.sp), surplus_(ctx.spSurplus), frameArgs_(ctx.frameArgs),
          scope_(ctx.scope), frame_(ctx.frame), thisObject_(ctx.thisObject) {}
    ~RegisterGuard() {
        ctx_.acc = acc_;
        ctx_.sp = sp_;
        ctx_.spSurplus = surplus_;
        ctx_.frameArgs = frameArgs_;
        ctx_.scope = scope_;
        ctx_.frame = frame_;
        ctx_.thisObject = thisObject_;
    }
    RegisterGuard(const RegisterGuard&) = delete;
    RegisterGuard& operator=(const RegisterGuard&) = delete;

private:
    ESContext& ctx_;
    const ESValue acc_;
    const std::int32_t sp_;
    const std::int32_t surplus_;
    const std::int32_t frameArgs_;
    ESObject* const scope_;
    ESValue* const frame_;
    ESObject* const thisObject_;
};

// The place of the machine points into the line table of a block that is about to go: only the line stays.
class LineGuard {
public:
    explicit LineGuard(ESContext& ctx) : ctx_(ctx) {}
    ~LineGuard() { ctx_.setCurrentLine(ctx_.currentLine()); }
    LineGuard(const LineGuard&) = delete;
    LineGuard& operator=(const LineGuard&) = delete;

private:
    ESContext& ctx_;
};

} // namespace

ESCompletion ESContext::evaluate(const QString& text) {
    if (nativeStackLow()) {
        stackTooSmall();
    }
    showActivation(*this);
    const RegisterGuard registers(*this);
    ESCompletion completion;
    try {
        const std::unique_ptr<ESCodeBlock> program = compileProgram(*this, text);
        const LineGuard line(*this);
        execute(program.get());
        completion.value = acc;
    } catch (const ESException& exception) {
        completion.status = ESCompletion::exception;
        completion.value = exception.value;
    }
    return completion;
}
