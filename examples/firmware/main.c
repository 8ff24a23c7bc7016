/* Reads the sensor, filters it and reports the level over the UART as a digit 0 to 9, forever. */
#include "adc.h"
#include "ring_buffer.h"
#include "sensor_filter.h"
#include "telemetry.h"
#include "uart.h"

volatile int g_level;
ring_t g_uart_tx;
/* Checksum of the node's name, sent with every telemetry frame. */
volatile uint8_t g_name_sum;

static void report(int level)
{
    char c;
    rb_put(&g_uart_tx, (char)('0' + level * 10 / (FILTER_MAX + 1)));
    while (rb_get(&g_uart_tx, &c)) {
        uart_putc(c);
    }
}

int main(void)
{
    rb_init(&g_uart_tx, RB_CAPACITY);
    filter_init();
    g_name_sum = checksum("sensor node");
    for (;;) {
        g_level = filter_step(adc_read(SENSOR_CHANNEL));
        report(g_level);
    }
}
