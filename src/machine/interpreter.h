// The machine's loop over the defined bytes. It runs what asks keepRunning() before every instruction, and it
// is the reference that the faster form (fused_code.h) is tested against.
#pragma once

#include <cstdint>

class ESCodeBlock;
class ESContext;
struct ESObject;

// Runs a block from offset `pc` to RET or RETU; on return ctx.acc holds the result, counted as one pushed
// value.
template <bool AsksKeepRunning>
void executeBytes(ESContext& ctx, ESCodeBlock& block, std::int32_t pc = 0);

// Calls any function. The arguments are the top argc entries of the stack; afterwards they are gone, and acc
// is the result. Throws TypeError for what cannot be called, and what the function throws.
void callObject(ESContext& ctx, ESObject* fn, ESObject* receiver, std::int32_t argc);
