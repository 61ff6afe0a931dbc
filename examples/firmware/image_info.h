// What a build step writes into the finished image. Both words are placed by the linker script.
#pragma once

#include <stdint.h>

namespace board {

extern const volatile uint32_t imageVersion; // 0x00MMmmpp
extern const volatile uint32_t imageCrc;     // over all of the flash in front of it

} // namespace board
