/* Functions that the analyzers record: coverage counts their bytes and branches, the trace their calls, the
   terminal what they write to the UART, HIL what they read and write in the board's peripheral registers. */
#include <stdint.h>

#define UART_DATA (*(volatile uint32_t *)0x40011004u)
#define HIL_SETPOINT (*(volatile uint32_t *)0x40020000u)
#define HIL_GAIN (*(volatile float *)0x40020004u)
#define HIL_OUTPUT (*(volatile int32_t *)0x40020008u)

volatile int32_t g_notes;
int32_t g_values[4] = {3, 0, -2, 0};

void note(int32_t value) __attribute__((noinline));
void note(int32_t value)
{
    g_notes += value;
}

/* No branch: every byte runs on each call. */
int32_t scale(int32_t value)
{
    return value * 3 + 1;
}

/* Two conditional branches: zero, negative or positive. */
int32_t classify(int32_t value)
{
    if (value == 0) {
        note(100);
        return 0;
    }
    if (value < 0) {
        note(-1);
        return -1;
    }
    note(1);
    return 1;
}

/* A loop whose test runs once more than its body. */
int32_t count_nonzero(const int32_t *values, int32_t count)
{
    int32_t found = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (values[i] != 0) {
            note(i);
            ++found;
        }
    }
    return found;
}

/* Writes the text to the UART's data register, one byte at a time. */
void terminal_write(const char *text)
{
    while (*text != '\0') {
        UART_DATA = (uint8_t)*text++;
    }
}

/* Reads the setpoint and the gain that the HIL gives, writes the output it drives, returns the setpoint. */
int32_t hil_step(void)
{
    uint32_t setpoint = HIL_SETPOINT;
    HIL_OUTPUT = (int32_t)((float)setpoint * HIL_GAIN);
    return (int32_t)setpoint;
}

/* Never called: no byte of it runs. */
int32_t unused(int32_t value)
{
    if (value > 10) {
        return value - 10;
    }
    return value;
}

int main(void)
{
    terminal_write("hello\n");
    classify(scale(1));
    classify(0);
    classify(-5);
    count_nonzero(g_values, 4);
    for (;;) {
        __asm volatile("bkpt #1");
    }
}

/* Runs until stopped: a target that is busy. */
void spin_forever(void)
{
    for (;;) {
        ++g_notes;
    }
}

/* A longer run of loops and branches, for timing: Collatz steps, restarted whenever they reach 1. */
uint32_t mix(uint32_t rounds)
{
    uint32_t value = 27;
    for (uint32_t i = 0; i < rounds; ++i) {
        if (value & 1u) {
            value = value * 3u + 1u;
        } else {
            value >>= 1;
        }
        if (value == 1u) {
            value = i + 27u;
        }
    }
    return value;
}

/* Recursion: each call enters the function again from inside it. */
uint32_t depth(uint32_t n)
{
    if (n == 0u) {
        return 0u;
    }
    return 1u + depth(n - 1u);
}
