#include "adc.h"

#include <stdint.h>

#define ADC_DATA(channel) (*(volatile uint32_t *)(ADC_BASE + 0x40u + 4u * (uint32_t)(channel)))

int adc_read(int channel)
{
    return (int)(ADC_DATA(channel) & 0x3FFu);
}
