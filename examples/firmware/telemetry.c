#include "telemetry.h"

#include "adc.h"

vec3_t vec_add(vec3_t a, vec3_t b)
{
    vec3_t sum = {(int16_t)(a.x + b.x), (int16_t)(a.y + b.y), (int16_t)(a.z + b.z)};
    return sum;
}

int32_t vec_dot(vec3_t a, vec3_t b)
{
    return (int32_t)a.x * b.x + (int32_t)a.y * b.y + (int32_t)a.z * b.z;
}

uint64_t energy_nj(uint32_t power_mw, uint32_t duration_ms)
{
    return (uint64_t)power_mw * duration_ms * 1000u;
}

void split_level(int level, int *tens, int *ones)
{
    *tens = level / 10;
    *ones = level % 10;
}

uint8_t checksum(const char *text)
{
    uint8_t sum = 0;
    while (*text != '\0') {
        sum = (uint8_t)(sum + *text++);
    }
    return sum;
}

int average_channels(int channels)
{
    int sum = 0;
    for (int channel = 0; channel < channels; channel++) {
        sum += adc_read(channel);
    }
    return channels > 0 ? sum / channels : 0;
}

uint32_t hub_status(void)
{
    return HUB_STATUS;
}

void radio_wait_ready(void)
{
    while ((RADIO_STATUS & RADIO_READY) == 0) {
    }
}
