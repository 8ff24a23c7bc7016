/* Telemetry of the sensor node: motion vectors, energy counters, message checksums, averaged
   converter channels and the status port of the radio. */
#ifndef TELEMETRY_H
#define TELEMETRY_H

#include <stdint.h>

/* The radio's status register; bit 7 is set while it is ready to send. The radio is not fitted on
   the example board, so the bit never comes. */
#define RADIO_STATUS (*(volatile uint32_t *)0x40013000u)
#define RADIO_READY 0x80u
/* The external sensor hub, mapped at an address where the example board has no memory. */
#define HUB_STATUS (*(volatile uint32_t *)0x60000000u)

typedef struct vec3 {
    int16_t x;
    int16_t y;
    int16_t z;
} vec3_t;

vec3_t vec_add(vec3_t a, vec3_t b);
int32_t vec_dot(vec3_t a, vec3_t b);
/* Energy in nanojoules of `power_mw` milliwatts for `duration_ms` milliseconds. */
uint64_t energy_nj(uint32_t power_mw, uint32_t duration_ms);
/* The two decimal digits of a level 0 .. 99. */
void split_level(int level, int *tens, int *ones);
/* Sum of the characters of a message, modulo 256. */
uint8_t checksum(const char *text);
/* Average of the converter's first `channels` channels. */
int average_channels(int channels);
uint32_t hub_status(void);
void radio_wait_ready(void);

#endif
