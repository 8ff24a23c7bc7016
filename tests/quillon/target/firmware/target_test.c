/* Firmware of the target layer's tests: loops to break and step in, faults, and functions to call. */
#include <stdint.h>

#include "sensor_filter.h"

volatile uint32_t g_ticks;
const uint32_t g_rom_word = 0x12345678u;
uint16_t g_ram_code[4]; /* in SRAM, which the tests map without execute access */

void tick(void)
{
    g_ticks++;
}

uint32_t count_ticks(uint32_t n)
{
    for (uint32_t i = 0; i < n; i++) {
        tick();
    }
    return g_ticks;
}

void spin_forever(void)
{
    for (;;) {
        g_ticks++;
    }
}

void write_rom(void)
{
    *(volatile uint32_t *)&g_rom_word = 0;
}

uint32_t read_unmapped(void)
{
    return *(volatile uint32_t *)0x30000000u;
}

void undefined_instruction(void)
{
    __asm volatile("udf #0");
}

void jump_to_ram(void)
{
    ((void (*)(void))((uintptr_t)g_ram_code | 1u))();
}

int weighted_sum(int a, int b, int c, int d)
{
    return a + 2 * b + 3 * c + 4 * d;
}

/* n filter steps over a sawtooth; returns the last level. */
int filter_bench(int n)
{
    int level = 0;
    for (int i = 0; i < n; i++) {
        level = filter_step((i * 37) & 1023);
    }
    return level;
}

/* n iterations of a two-instruction loop in registers: the emulator's best case. */
__attribute__((naked)) uint32_t count_down(__attribute__((unused)) uint32_t n)
{
    __asm volatile("1: subs r0, #1\n"
                   "   bne 1b\n"
                   "   bx lr\n");
}

int main(void)
{
    filter_init();
    for (;;) {
        count_ticks(10);
    }
}
