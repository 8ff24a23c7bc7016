/* Calls everything, with inputs the compiler cannot fold. */
#include "types.h"

int counter_a_next(int step);
int counter_b_next(int step);
struct point point_add(struct point a, struct point b);
int64_t scale(int64_t value, int factor);
int sum_points(const struct point *pts, unsigned count);
void fill(char *dst, char c, int n);
double mix(float f, double d, enum color c, struct flags fl);
int checksum(const uint8_t *data, int len);
int clamp_add(int a, int b, int lo, int hi);
int window_average(const int *samples, int n);
void unwind_probe(void);

volatile int g_input = 3;
int g_samples[4] = { 10, 20, 30, 40 };
char g_text[8];
extern struct point g_point;
extern struct flags g_flags;

int main(void)
{
    int n = g_input;
    struct point p = point_add(g_point, g_point);
    int result = counter_a_next(n) + counter_b_next(n) + sum_points(&p, 1);
    result += (int)scale(n, 2) + (int)mix(1.0f, 2.0, COLOR_RED, g_flags);
    fill(g_text, 'x', n);
    result += checksum((const uint8_t *)g_text, n) + clamp_add(n, result, 0, 100);
    result += window_average(g_samples, 4) + types_touch();
    unwind_probe();
    return result;
}
