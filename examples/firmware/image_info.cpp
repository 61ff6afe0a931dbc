#include "image_info.h"

namespace board {

[[gnu::section(".image_version"), gnu::used]] const volatile uint32_t imageVersion = 0;
[[gnu::section(".image_crc"), gnu::used]] const volatile uint32_t imageCrc = 0xFFFFFFFF;

} // namespace board
