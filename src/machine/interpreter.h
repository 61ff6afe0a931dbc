// The machine's loop over the defined bytes. It runs what asks keepRunning() before every instruction, and it
// is the reference that the faster form (fused_code.h) is tested against.
#pragma once

#include <cstdint>

class ESCodeBlock;
class ESContext;

// Runs a block from offset `pc` to RET or RETU; on return ctx.acc holds the result, counted as one pushed
// value.
template <bool AsksKeepRunning>
void executeBytes(ESContext& ctx, ESCodeBlock& block, std::int32_t pc = 0);
