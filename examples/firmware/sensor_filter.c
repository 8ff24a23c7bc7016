#include "sensor_filter.h"

filter_t g_filter;
int32_t g_gain = 1;

void filter_init(void)
{
    for (int i = 0; i < FILTER_WINDOW; i++) {
        g_filter.samples[i] = 0;
    }
    g_filter.sum = 0;
    g_filter.count = 0;
    g_filter.next = 0;
}

/* A sample beyond the converter's range means a saturated sensor: the window restarts full at the limit, so
   that the output follows at once instead of averaging stale samples. */
static int filter_restart(int limit)
{
    for (int i = 0; i < FILTER_WINDOW; i++) {
        g_filter.samples[i] = limit;
    }
    g_filter.sum = limit * FILTER_WINDOW;
    g_filter.count = FILTER_WINDOW;
    g_filter.next = 0;
    return limit;
}

int filter_step(int sample)
{
    int value = sample * g_gain;
    if (value > FILTER_MAX) {
        return filter_restart(FILTER_MAX);
    }
    if (value < FILTER_MIN) {
        return filter_restart(FILTER_MIN);
    }
    if (g_filter.count == FILTER_WINDOW) {
        g_filter.sum -= g_filter.samples[g_filter.next];
    } else {
        g_filter.count++;
    }
    g_filter.samples[g_filter.next] = value;
    g_filter.sum += value;
    g_filter.next = (uint8_t)((g_filter.next + 1) % FILTER_WINDOW);
    return g_filter.sum / g_filter.count;
}

void calibrate(int gain)
{
    g_gain = gain;
}

void reset_calibration(void)
{
    g_gain = 1;
}
