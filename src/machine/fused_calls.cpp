#include "machine/fused_calls.h"

#include "machine/fused_sites.h"
#include "machine/fused_values.h"
#include "machine/instructions.h"
#include "machine/interpreter.h"

#include <algorithm>

void enterActivation(ESContext& ctx, ESFusedCode& code, const ESValue* args) {
    if (code.freeNodes.empty()) {
        pushActivation(ctx, code.block, code.argCount, args);
        return;
    }
    ESObject* node = code.freeNodes.back();
    code.freeNodes.pop_back();
    node->prototype = ctx.scope;
    ESPropertyTable& properties = node->value.object->properties;
    const auto count = static_cast<std::uint32_t>(code.activationTemplate.size());
    for (std::uint32_t i = 0; i < count; ++i) {
        properties.at(i) = code.activationTemplate[i];
    }
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(code.argCount); ++i) {
        copyValue(properties.at(i), args[i]);
    }
    ctx.scope = node;
}

void showActivation(ESContext& ctx) {
    ESRegisterCall* const call = ctx.registerCall;
    if (call == nullptr || call->shown) {
        return;
    }
    const ESFusedCode& code = call->code;
    pushActivation(ctx, code.block, code.argCount, call->registers);
    for (std::int32_t i = code.argCount; i < code.argCount + code.localCount; ++i) {
        ctx.scope->value.object->properties.at(static_cast<std::uint32_t>(i)).setValue(call->registers[i]);
    }
    call->shown = true;
}

void finishOnBytes(ESContext& ctx, const ESFusedCode& code, ESValue* registers, std::int32_t offset) {
    const auto opcode = static_cast<ESOpcode>(code.block.code[static_cast<std::size_t>(offset)]);
    const std::int32_t next = offset + instructionTable[opcode].width();
    std::int32_t deepest = 0;
    const std::int32_t depth = code.block.depths(deepest)[static_cast<std::size_t>(next)];
    // All values below the call are at home, behind the locals. The bytes have them behind the arguments, and
    // the one on top in acc.
    ESValue* const base = registers + code.argCount;
    std::copy_n(base + code.localCount + 1, depth - 1, base + 1);
    ctx.sp = static_cast<std::int32_t>(base - ctx.stack) + depth;
    ctx.spSurplus += code.uncounted;
    ESValue* const savedFrame = std::exchange(ctx.frame, registers);
    const std::int32_t savedArgs = std::exchange(ctx.frameArgs, code.argCount);
    executeBytes<false>(ctx, code.block, next);
    ctx.frame = savedFrame;
    ctx.frameArgs = savedArgs;
}

ESObject* newFromPrototypeOf(ESContext& ctx, ESObject* constructor) {
    const ESProperty* slot = guessedOwn(constructor, wellKnownAtoms.prototype, 1);
    const ESValue prototype =
        slot != nullptr ? slot->value() : ctx.get(constructor, wellKnownAtoms.prototype);
    ESObject* made =
        ctx.newObject(prototype.isObject() ? prototype.object : ctx.objectPrototype, ctx.plainClass);
    const ESCodeBlock* block = constructor->callClosure->block;
    if (block != nullptr && block->fused != nullptr) {
        made->properties.reserve(ctx.arena(), block->fused->propertiesMade);
    }
    return made;
}
