/* Ring buffer of characters, as the UART driver queues them. */
#ifndef RING_BUFFER_H
#define RING_BUFFER_H

#include <stdint.h>

#define RB_CAPACITY 16

typedef struct ring {
    char data[RB_CAPACITY];
    uint8_t size;  /* capacity in use, 1 to RB_CAPACITY */
    uint8_t head;  /* where the next character goes */
    uint8_t tail;  /* where the next character comes from */
    uint8_t count; /* characters held */
} ring_t;

/* An empty buffer of `size` characters (clamped to 1 .. RB_CAPACITY). */
void rb_init(ring_t *rb, int size);
/* 1 if `c` was queued, 0 if the buffer is full. */
int rb_put(ring_t *rb, char c);
/* 1 and the oldest character in *out, or 0 if the buffer is empty. */
int rb_get(ring_t *rb, char *out);
int rb_count(const ring_t *rb);
int rb_free(const ring_t *rb);

#endif
