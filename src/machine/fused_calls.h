// What the fused loop does where a call begins and ends: registers and variables of the function that is
// about to run, and the activation that an ended call leaves for the next.
#pragma once

#include "machine/code_block.h"
#include "machine/fused_code.h"
#include "machine/operators.h"

#include <utility>

// The scope of a call that keeps its variables in an activation: one that an ended call left, or a new one.
void enterActivation(ESContext& ctx, ESFusedCode& code, const ESValue* args);

// Sets the registers and variables of a script function about to run. Its arguments are complete, and the
// caller has seen to the context's spSurplus.
inline void enterFunction(ESContext& ctx, ESFusedCode& code, const ESClosure& closure, ESObject* receiver,
                          ESValue* args) {
    ctx.scope = closure.scope;
    ctx.thisObject = receiver;
    if (code.needsActivation) {
        enterActivation(ctx, code, args);
        return;
    }
    ESValue* local = args + code.argCount;
    for (std::int32_t i = 0; i < code.localCount; ++i) {
        local[i].tag = ESTagUndefined;
        local[i].bits = 0;
    }
}

// `node` was the scope while the function ran.
inline void leaveFunction(ESFusedCode& code, ESObject* node) {
    if (code.needsActivation && !isCaptured(node)) {
        code.freeNodes.push_back(node);
    }
}

// A native called by a function whose variables lie in registers though it has an activation by the bytes. An
// evaluator, however the native came to it, needs that activation: showActivation() makes it of the
// registers, and the function goes on with it behind the call, on the bytes.
struct ESRegisterCall {
    ESRegisterCall(ESContext& ctx, ESFusedCode& caller, ESValue* frame)
        : context(ctx), code(caller), registers(frame) {
        context.registerCall = this;
    }
    ~ESRegisterCall() { context.registerCall = nullptr; }
    ESRegisterCall(const ESRegisterCall&) = delete;
    ESRegisterCall& operator=(const ESRegisterCall&) = delete;

    ESContext& context;
    ESFusedCode& code;
    ESValue* const registers;
    bool shown = false;
};

// Runs the rest of a function whose activation was shown, behind the call at `offset` whose
// result is in acc. Its own is there then.
void finishOnBytes(ESContext& ctx, const ESFusedCode& code, ESValue* registers, std::int32_t offset);

// Gives the depth of frames back when a run ends, however it ends. What it runs is in no native call yet.
class FrameGuard {
public:
    explicit FrameGuard(ESContext& ctx)
        : ctx_(ctx), depth_(ctx.frameDepth), call_(std::exchange(ctx.registerCall, nullptr)) {}
    ~FrameGuard() {
        ctx_.frameDepth = depth_;
        ctx_.registerCall = call_;
    }
    FrameGuard(const FrameGuard&) = delete;
    FrameGuard& operator=(const FrameGuard&) = delete;

private:
    ESContext& ctx_;
    std::int32_t depth_;
    ESRegisterCall* call_;
};

// A new object of a constructor, with room for what the constructor gave the ones before.
ESObject* newFromPrototypeOf(ESContext& ctx, ESObject* constructor);
