// Names: what each one means where it stands, and the instruction form that follows from it.
#include "compiler/code_generator.h"

#include "runtime/context.h"

static constexpr ESNameForms callForms = {OP_CALLG, OP_CALLA, OP_CALLAM, OP_CALLL, OP_CALLLM, OP_CALLW};

// Mentioning a name that nothing declares makes a global of it, here and now. Inside `with`, and for a
// variable of a function further out, only the run can tell.
ESNameRef ESCodeGenerator::resolveName(ESAtom atom) {
    const ESNameRef dynamic = {ESNameRef::Dynamic, 0, atom};
    if (firstPass_ && !scope_->isProgram) {
        if (atom == wellKnownAtoms.arguments) {
            markActivation();
            declareArguments();
        } else if (atom == wellKnownAtoms.eval) {
            if (scope_->enclosing != nullptr) {
                scope_->enclosing->block->enclosesEval = true;
            }
            declareArguments();
        }
    }
    if (withDepth_ != 0) {
        markActivation();
        return dynamic;
    }
    if (!scope_->isProgram) {
        const std::int32_t position = scope_->find(atom);
        if (position >= 0) {
            const ESProperty& variable = block().variables[static_cast<std::size_t>(position)];
            if ((variable.attributes & ParameterSlot) != 0) {
                return {ESNameRef::Argument, position, atom};
            }
            return {ESNameRef::Local, position - block().argCount, atom};
        }
        for (const ESFunctionScope* outer = scope_->enclosing; outer != nullptr; outer = outer->enclosing) {
            if (outer->find(atom) >= 0) {
                markActivation();
                return dynamic;
            }
        }
    }
    ESPropertyTable& globals = ctx_.globalObject->properties;
    const ESProperty* slot = globals.find(atom);
    if (slot == nullptr) {
        slot = &globals.append(ctx_.arena(), atom, 0, undefinedValue());
    }
    return {ESNameRef::Global, static_cast<std::int32_t>(slot - &globals.at(0)), atom};
}

// `arguments` is a local like any other, and undefined.
void ESCodeGenerator::declareArguments() {
    declareName(ctx_, *scope_, wellKnownAtoms.arguments, DontEnum, true);
}

// The variables of this function, and of all around it, are looked for by name while they run.
void ESCodeGenerator::markActivation() {
    for (ESFunctionScope* scope = scope_; scope != nullptr; scope = scope->enclosing) {
        scope->block->needsActivation = true;
    }
}

std::uint8_t ESCodeGenerator::opcodeFor(const ESNameForms& forms, const ESNameRef& ref) const {
    switch (ref.kind) {
    case ESNameRef::Global:
        return forms.global;
    case ESNameRef::Argument:
        return block().needsActivation ? forms.argumentInMemory : forms.argument;
    case ESNameRef::Local:
        return block().needsActivation ? forms.localInMemory : forms.local;
    case ESNameRef::Dynamic:
        break;
    }
    return forms.dynamic;
}

void ESCodeGenerator::emitName(const ESNameForms& forms, const ESNameRef& ref, std::int32_t line) {
    const std::uint8_t opcode = opcodeFor(forms, ref);
    if (ref.kind == ESNameRef::Dynamic) {
        emitter_.emitAtom(opcode, ref.atom, line);
    } else {
        emitter_.emitOp16(opcode, static_cast<std::size_t>(ref.index), line);
    }
}

void ESCodeGenerator::emitCall(const ESNameRef& ref, std::size_t count, std::int32_t line) {
    const bool dynamic = ref.kind == ESNameRef::Dynamic;
    const std::int32_t operand = dynamic ? compiledIndex(ref.atom) : ref.index;
    emitter_.emitOp16x2(opcodeFor(callForms, ref), static_cast<std::size_t>(operand), count, line);
}
