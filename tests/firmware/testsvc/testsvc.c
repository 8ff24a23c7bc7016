/* Functions that the test service runs as tests. */
#include <stdint.h>

typedef struct point {
    int32_t x;
    int32_t y;
} point_t;

typedef struct box {
    point_t low;
    point_t high;
    uint8_t tag;
} box_t;

int32_t g_calls;
int32_t g_seen[4];
int64_t g_wide;

int32_t add(int32_t a, int32_t b)
{
    return a + b;
}

int64_t mul_wide(int32_t a, int64_t b)
{
    return (int64_t)a * b;
}

/* Five arguments: the last two go on the stack. */
int64_t sum5(int32_t a, int64_t b, int32_t c, int64_t d, int32_t e)
{
    return a + b + c + d + e;
}

int32_t area(box_t b)
{
    return (b.high.x - b.low.x) * (b.high.y - b.low.y) + b.tag;
}

box_t make_box(int32_t x, int32_t y, int32_t w, int32_t h)
{
    box_t b = {{x, y}, {x + w, y + h}, 7};
    return b;
}

point_t mirror(point_t p)
{
    point_t m = {p.y, p.x};
    return m;
}

void fill(int32_t *out, int32_t n, int32_t value)
{
    for (int32_t i = 0; i < n; ++i)
        out[i] = value + i;
}

/* Writes through whatever pointer it gets; 0 faults in flash. */
void poke(int32_t *where, int32_t value)
{
    *where = value; /* poke writes here */
}

void spin(void)
{
    for (;;) /* spin loops here */
        ++g_calls;
}

/* Stubbed in the tests: records its argument unless a stub replaces it. */
int32_t sensor(int32_t channel)
{
    g_seen[channel & 3] = channel;
    return channel * 100;
}

int64_t wide_source(int64_t seed)
{
    g_wide = seed;
    return seed + 1;
}

point_t point_source(int32_t k)
{
    point_t p = {k, -k};
    return p;
}

/* Calls sensor twice. */
int32_t read_two(int32_t first, int32_t second)
{
    int32_t a = sensor(first);
    int32_t b = sensor(second);
    ++g_calls;
    return a - b;
}

int64_t wide_twice(int64_t seed)
{
    return wide_source(seed) + wide_source(seed * 2);
}

int32_t point_sum(int32_t k)
{
    point_t p = point_source(k);
    return p.x * 10 + p.y;
}

int main(void)
{
    return add(1, 2) + (int32_t)mul_wide(1, 2) + (int32_t)sum5(1, 2, 3, 4, 5) + read_two(1, 2) +
           (int32_t)wide_twice(3) + point_sum(1) + area(make_box(0, 0, 1, 1)) + mirror(point_source(1)).x;
}
