/* Analog-to-digital converter: one conversion result register per channel. */
#ifndef ADC_H
#define ADC_H

#define ADC_BASE 0x40012000u
#define SENSOR_CHANNEL 3

/* The last conversion of `channel`, 0 .. 1023. */
int adc_read(int channel);

#endif
