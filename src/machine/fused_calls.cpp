#include "machine/fused_calls.h"

#include "machine/fused_sites.h"
#include "machine/fused_values.h"

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
