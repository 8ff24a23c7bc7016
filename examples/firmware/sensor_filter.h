/* Sensor filter: moving average over the last four samples of the converter, with calibration and clamping. */
#ifndef SENSOR_FILTER_H
#define SENSOR_FILTER_H

#include <stdint.h>

#define FILTER_WINDOW 4
#define FILTER_MIN 0
#define FILTER_MAX 1023

typedef struct filter {
    int32_t samples[FILTER_WINDOW]; /* the window; samples[next] is the oldest once it is full */
    int32_t sum;                    /* sum of the samples in the window */
    uint8_t count;                  /* samples in the window, 0 .. FILTER_WINDOW */
    uint8_t next;                   /* where the next sample goes */
} filter_t;

extern filter_t g_filter;
/* Calibration factor applied to every raw sample. */
extern int32_t g_gain;

void filter_init(void);
/* Adds a raw sample and returns the filtered level, FILTER_MIN .. FILTER_MAX. */
int filter_step(int sample);
void calibrate(int gain);
void reset_calibration(void);

#endif
