/* Functions with parameters, nested blocks and a function-local static; -O0. */
#include "types.h"

int calls_total;

/* Never referenced: the linker drops both, their debug information stays at address 0. */
int g_unused = 5;

int unused_function(int x)
{
    return x + g_unused;
}

struct point point_add(struct point a, struct point b)
{
    struct point r = { (int16_t)(a.x + b.x), (int16_t)(a.y + b.y) };
    return r;
}

int64_t scale(int64_t value, int factor)
{
    return value * factor;
}

int sum_points(const struct point *pts, unsigned count)
{
    static int calls;
    int total = 0;
    calls++;
    for (unsigned i = 0; i < count; i++) { /* @loop */
        int dx = pts[i].x;
        total += dx; /* @accumulate */
    }
    calls_total = calls;
    return total;
}

void fill(char *dst, char c, int n)
{
    while (n-- > 0)
        *dst++ = c;
}

double mix(float f, double d, enum color c, struct flags fl)
{
    return f + d + c + fl.level;
}
