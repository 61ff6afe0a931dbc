/* Vectors, and the way from reset to main. */
#include <stdint.h>

extern uint32_t data_load[], data_start[], data_end[], bss_start[], bss_end[], stack_top[];

int main(void);
void reset_handler(void);
void default_handler(void);
void system_tick_handler(void);

uint32_t system_ticks;

void reset_handler(void) {
    const uint32_t* from = data_load;
    for (uint32_t* to = data_start; to < data_end; ++to) {
        *to = *from++;
    }
    for (uint32_t* to = bss_start; to < bss_end; ++to) {
        *to = 0;
    }
    main();
}

void default_handler(void) {
    for (;;) {
    }
}

void system_tick_handler(void) { ++system_ticks; }

__attribute__((section(".vectors"), used)) static void (*const vectors[16])(void) = {
    (void (*)(void))stack_top,
    reset_handler,
    default_handler,
    default_handler,
    default_handler,
    default_handler,
    default_handler,
    0,
    0,
    0,
    0,
    default_handler,
    default_handler,
    0,
    default_handler,
    system_tick_handler,
};
