/* Code and constants only: no data, no bss. The stack pointer of the vector table lies in RAM that no
   segment touches. */
#include <stdint.h>

#define STACK_TOP 0x20020000u

void Reset_Handler(void);

__attribute__((section(".vectors"), used)) static const uint32_t vectors[2] = {
    STACK_TOP,
    (uint32_t)&Reset_Handler,
};

static const uint16_t table[] = {1, 2, 3, 5, 8, 13, 21};

unsigned sum_table(void)
{
    unsigned sum = 0;
    for (unsigned i = 0; i < sizeof table / sizeof table[0]; ++i) {
        sum += table[i];
    }
    return sum;
}

void Reset_Handler(void)
{
    for (;;) {
        (void)sum_table();
    }
}
