/* UART transmitter. */
#ifndef UART_H
#define UART_H

#define UART_BASE 0x40011000u

void uart_putc(char c);

#endif
