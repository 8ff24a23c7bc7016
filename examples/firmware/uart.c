#include "uart.h"

#include <stdint.h>

#define UART_DATA (*(volatile uint32_t *)(UART_BASE + 0x04u))

void uart_putc(char c)
{
    UART_DATA = (uint8_t)c;
}
