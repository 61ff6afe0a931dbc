// The form in which the machine runs code fast: made from a block's bytes on its first run, private to the
// machine, and equal to the loop over the bytes in everything that a script, a message or a limit can show.
// The stack's entries become registers, operands name registers, numbers stand in the instruction, and a
// comparison and its jump are one. fused_translator.cpp makes it, fused_loop.cpp runs it.
#pragma once

#include "runtime/context.h"

#include <cstdint>
#include <memory>
#include <vector>

class ESCodeBlock;

// An instruction is a run of cells: what runs it, then its operands.
union ESCell {
    const void* handler;  // where the compiler has computed goto
    std::uint64_t opcode; // where it hasn't
    struct {
        std::uint32_t low;
        std::uint32_t high;
    } operand;
    double number;
    std::uint64_t bits;
    ESAtom atom;
};
static_assert(sizeof(ESCell) == 8);

// In place of a register: the receiver of the call is `this`.
constexpr std::uint32_t thisOperand = 0xFFFFFFFF;
// In place of a position: nothing is remembered yet.
constexpr std::uint32_t nowhere = 0xFFFFFFFF;

enum class ESFusedOp : std::uint8_t {
#define ES_FUSED(name, cells) name,
#include "machine/fused_ops.def"
};

constexpr std::uint8_t fusedCells[] = {
#define ES_FUSED(name, cells) cells,
#include "machine/fused_ops.def"
};

class ESFusedCode {
public:
    explicit ESFusedCode(ESCodeBlock& owner) : block(owner) {}

    // What the machine has to know where an instruction calls out.
    struct CallOut {
        std::int32_t sp;     // entries in use from the frame on, as the loop over the bytes would have them
        std::int32_t offset; // of the instruction in the block's bytes
    };

    ESCodeBlock& block;
    std::vector<ESCell> cells;
    std::vector<CallOut> callOuts; // beside the cells
    std::int32_t argCount = 0;
    std::int32_t localCount = 0; // of those that lie in the stack
    std::int32_t uncounted = 0;  // of these, how many the loop over the bytes keeps elsewhere
    bool needsActivation = false;
    bool inRegisters = false; // the variables lie in the stack, though the bytes have them in an activation
    std::vector<ESProperty> activationTemplate; // slots of a fresh activation
    std::uint32_t propertiesMade = 0;           // most that a call as a constructor has left on its object
    std::vector<ESObject*> freeNodes;           // scope nodes of ended calls that nothing captured
};

// The form of a block, made if need be. `handlers` is the loop's table, by ESFusedOp.
ESFusedCode& fusedCodeOf(ESCodeBlock& block, const void* const* handlers);

// Runs a block as execute() is defined to.
void executeFused(ESContext& ctx, ESCodeBlock& block);
// Calls a script function as call() is defined to, its arguments completed.
void callFused(ESContext& ctx, const ESClosure& closure, ESObject* receiver, std::int32_t argc);

// One script call that the loop has entered without recursing; kept beside the value stack.
struct ESFusedFrame {
    const ESCell* pc;
    ESFusedCode* code;
    ESValue* frame;
    ESObject* scope;
    ESObject* thisObject;
    ESObject* made; // of `new`: what the call was made for
    ESObject* node; // the callee's own scope node, if it keeps its variables in an activation
    std::int32_t surplus;
    std::uint32_t destination; // register of the result
};
static_assert(sizeof(ESFusedFrame) <= 128, "the context reserves that much for each");
