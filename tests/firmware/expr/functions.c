/* Functions the expression tests call on the target. */
#include "types.h"

extern volatile int g_counter;

int add(int a, int b) { return a + b; }
int64_t add64(int64_t a, int64_t b) { return a + b; }
int64_t mix(int a, int64_t b, int c) { return a * 1000000000000LL + b * 10 + c; }
int sum6(int a, int b, int c, int d, int e, int f) { return a + 2 * b + 3 * c + 4 * d + 5 * e + 6 * f; }
int sum_point(struct point p) { return p.x * 100 + p.y; }

struct point make_point(int x, int y)
{
    struct point p = { x, y };
    return p;
}

struct small make_small(int16_t a, int16_t b)
{
    struct small s = { a, b };
    return s;
}

int sum_big(struct big b)
{
    int total = 0;
    for (int i = 0; i < 6; ++i)
        total += b.v[i] * (i + 1);
    return total;
}

int64_t sum_wide(int a, struct wide w) { return a + w.a * 10 + w.b * 100; }
double scale(double value, float factor) { return value * factor; }
float halve(float value) { return value / 2; }

unsigned length(const char *text)
{
    unsigned n = 0;
    while (text[n])
        ++n;
    return n;
}

int bump(int by)
{
    g_counter += by;
    return g_counter;
}

void spin(void)
{
    for (;;)
        ++g_counter;
}

int crash(void)
{
    return *(volatile int *)0xF8000000u;
}

uint8_t ring_count(const ring_t *ring) { return (uint8_t)(ring->head - ring->tail); }
