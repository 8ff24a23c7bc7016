#include "ring_buffer.h"

void rb_init(ring_t *rb, int size)
{
    if (size < 1) {
        size = 1;
    } else if (size > RB_CAPACITY) {
        size = RB_CAPACITY;
    }
    for (int i = 0; i < RB_CAPACITY; i++) {
        rb->data[i] = 0;
    }
    rb->size = (uint8_t)size;
    rb->head = 0;
    rb->tail = 0;
    rb->count = 0;
}

int rb_put(ring_t *rb, char c)
{
    if (rb->count >= rb->size) {
        return 0;
    }
    rb->data[rb->head] = c;
    rb->head = (uint8_t)((rb->head + 1) % rb->size);
    rb->count++;
    return 1;
}

int rb_get(ring_t *rb, char *out)
{
    if (rb->count == 0) {
        return 0;
    }
    *out = rb->data[rb->tail];
    rb->tail = (uint8_t)((rb->tail + 1) % rb->size);
    rb->count--;
    return 1;
}

int rb_count(const ring_t *rb)
{
    return rb->count;
}

int rb_free(const ring_t *rb)
{
    return rb->size - rb->count;
}
