/* Test firmware of the debug service: every line is one statement, so that line steps are easy to follow. */
#include <stdint.h>

volatile int g_counter;
volatile int g_total = 5;
int g_depth;
const uint32_t g_table[4] = {1, 2, 3, 4};

int add(int a, int b)
{
    int sum = a + b;
    return sum;
}

int twice(int x)
{
    int y = add(x, x);
    return y;
}

int depth(int n)
{
    if (n == 0) {
        return g_depth;
    }
    g_depth++;
    return depth(n - 1);
}

void write_flash(void)
{
    *(volatile uint32_t *)0x00001000 = 0xDEADBEEF;
}

void tick(void)
{
    g_counter++;
    g_total = twice(g_counter);
}

int main(void)
{
    g_depth = 0;
    g_total = (int)g_table[g_depth];
    depth(3);
    for (;;) {
        tick();
        if (g_counter == 1000) {
            write_flash();
        }
    }
}
