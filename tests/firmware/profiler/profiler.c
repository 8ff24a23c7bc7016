/* Functions that the profiler measures. Each is kept out of line so that its calls stay calls. */
#include <stdint.h>

#define MEASURED __attribute__((noinline))

volatile uint32_t g_sink;
volatile uint32_t g_state; /* written by walk() with 0, 1, 2, 0, ... */
volatile uint32_t g_word;  /* written one byte at a time by poke_byte() */
volatile uint64_t g_wide;  /* too wide for a data area */
struct pair {
    uint32_t a;
    uint32_t b;
} g_pair;

/* Sums 0 .. n-1: the same instructions once per iteration. */
MEASURED uint32_t loop(uint32_t n)
{
    uint32_t sum = 0;
    for (uint32_t i = 0; i < n; ++i) {
        sum += i;
        g_sink = sum;
    }
    return sum;
}

MEASURED uint32_t leaf(uint32_t x)
{
    g_sink = x;
    return x + 1;
}

/* Calls leaf n times. */
MEASURED uint32_t caller(uint32_t n)
{
    uint32_t sum = 0;
    for (uint32_t i = 0; i < n; ++i) {
        sum += leaf(i);
    }
    return sum;
}

/* outer -> middle -> leaf, leaf. */
MEASURED uint32_t middle(uint32_t x)
{
    uint32_t a = leaf(x);
    g_sink = a;
    return a + leaf(x + 1);
}

MEASURED uint32_t outer(uint32_t x)
{
    uint32_t r = middle(x);
    g_sink = r;
    return r * 2;
}

/* n + 1 calls deep; the store after the call keeps it a real recursion. */
MEASURED uint32_t depth(uint32_t n)
{
    if (n == 0) {
        return 0;
    }
    uint32_t r = depth(n - 1);
    g_sink = r;
    return r + 1;
}

/* Ends with a branch to leaf, which returns straight to tail's caller. */
MEASURED uint32_t tail(uint32_t x)
{
    g_sink = x;
    return leaf(x * 3);
}

/* Calls tail n times. */
MEASURED uint32_t tails(uint32_t n)
{
    uint32_t sum = 0;
    for (uint32_t i = 0; i < n; ++i) {
        sum += tail(i);
        g_sink = sum;
    }
    return sum;
}

/* Stubbed in the tests. */
MEASURED uint32_t sensor(uint32_t channel)
{
    g_sink = channel;
    return channel * 7;
}

/* Reads n channels. */
MEASURED uint32_t poll(uint32_t n)
{
    uint32_t sum = 0;
    for (uint32_t i = 0; i < n; ++i) {
        sum += sensor(i);
    }
    return sum;
}

/* Writes i % 3 into g_state for i = 0 .. n-1, the same instructions between two writes. */
MEASURED void walk(uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i) {
        g_state = i % 3;
    }
}

/* Writes byte 1 of g_word only. */
MEASURED void poke_byte(uint32_t value)
{
    ((volatile uint8_t *)&g_word)[1] = (uint8_t)value;
}

/* A routine's exit in the middle of a function: the label marks the second store. */
MEASURED uint32_t staged(uint32_t x)
{
    g_sink = x;
    __asm volatile(".global staged_mid\nstaged_mid:");
    g_sink = x + 1;
    return x + 2;
}

int main(void)
{
    for (;;) {
        g_wide = loop(3) + caller(2) + outer(1) + depth(2) + tails(2) + poll(2) + staged(1);
        walk(3);
        poke_byte(1);
        g_pair.a = 1;
    }
}
