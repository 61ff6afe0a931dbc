// What the fused loop does where a call begins and ends: registers and variables of the function that is
// about to run, and the activation that an ended call leaves for the next.
#pragma once

#include "machine/code_block.h"
#include "machine/fused_code.h"
#include "machine/operators.h"

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

// Gives the depth of frames back when a run ends, however it ends.
class FrameGuard {
public:
    explicit FrameGuard(ESContext& ctx) : ctx_(ctx), depth_(ctx.frameDepth) {}
    ~FrameGuard() { ctx_.frameDepth = depth_; }
    FrameGuard(const FrameGuard&) = delete;
    FrameGuard& operator=(const FrameGuard&) = delete;

private:
    ESContext& ctx_;
    std::int32_t depth_;
};

// A new object of a constructor, with room for what the constructor gave the ones before.
ESObject* newFromPrototypeOf(ESContext& ctx, ESObject* constructor);
