// Bytecode as text, for people who look into the engine: one line an instruction, printed through a stream
// that is absent unless somebody sets it.
#pragma once

#include "machine/code_block.h"

#include <cstdint>
#include <ostream>

// Where listings go; null (the start) discards them.
extern std::ostream* debugStream;
// Debug flags of the process, 0 at start. Nothing but tests and tools sets them.
extern std::uint8_t debugFlags;
constexpr std::uint8_t debugListBlocks = 2; // list each block when it is finished

// Prints the instruction at `offset`, without a line end, and gives the offset of the next one. globalObject
// names the slots.
std::int32_t listInstruction(const ESObject* globalObject, const ESCodeBlock& block, std::int32_t offset);
// Prints two line ends, then every instruction with a line end behind it.
void listBlock(const ESObject* globalObject, const ESCodeBlock& block);
