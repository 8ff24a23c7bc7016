/* Compiled with -Og: locals in registers and location lists. */
#include "types.h"

int g_last_average;

__attribute__((noinline)) int checksum(const uint8_t *data, int len)
{
    int sum = 0;
    for (int i = 0; i < len; i++)
        sum = (sum << 1) ^ data[i]; /* @checksum_step */
    return sum;
}

__attribute__((noinline)) int clamp_add(int a, int b, int lo, int hi)
{
    int s = a + b;
    if (s < lo)
        s = lo;
    if (s > hi)
        s = hi;
    return s;
}

__attribute__((noinline)) int window_average(const int *samples, int n)
{
    int total = 0;
    for (int i = 0; i < n; i++)
        total += samples[i];
    int avg = n ? total / n : 0;
    g_last_average = avg;
    return avg + checksum((const uint8_t *)samples, n); /* @after_call */
}
