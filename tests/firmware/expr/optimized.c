/* Compiled with -Og: parameters and locals live in registers and location lists. */
#include "types.h"

volatile int g_sink;

__attribute__((noinline)) int locals_demo(int count, int16_t step, struct point *where)
{
    int total = 0;
    int64_t wide = (int64_t)count << 33;
    for (int i = 0; i < count; ++i) {
        total += step * i;
        g_sink = total; /* @loop */
    }
    where->x = total;
    g_sink = (int)(wide >> 32); /* @after */
    return total + where->y;
}
