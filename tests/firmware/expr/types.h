/* Types of the expression test firmware. */
#ifndef EXPR_TYPES_H
#define EXPR_TYPES_H

#include <stdint.h>

enum color { RED, GREEN = 5, BLUE };
typedef enum { MODE_OFF = -1, MODE_ON = 1 } mode_t;

struct point {
    int x;
    int y;
};

struct flags {
    unsigned ready : 1;
    unsigned level : 3;
    signed delta : 4;
    unsigned wide : 20;
    uint8_t tail;
};

struct record {
    char name[8];
    struct point corners[2];
    int16_t values[3];
    struct flags bits;
    const char *label;
    struct record *next;
    enum color tint;
};

union number {
    uint32_t word;
    uint8_t bytes[4];
    float real;
};

typedef struct ring {
    uint8_t buffer[16];
    uint8_t head;
    uint8_t tail;
} ring_t;

struct small {
    int16_t a;
    int16_t b;
};

struct big {
    int v[6];
};

struct wide {
    int32_t a;
    int64_t b;
};

typedef int (*binary_fn)(int, int);

int add(int a, int b);
int64_t add64(int64_t a, int64_t b);
int64_t mix(int a, int64_t b, int c);
int sum6(int a, int b, int c, int d, int e, int f);
int sum_point(struct point p);
struct point make_point(int x, int y);
struct small make_small(int16_t a, int16_t b);
int sum_big(struct big b);
int64_t sum_wide(int a, struct wide w);
double scale(double value, float factor);
float halve(float value);
unsigned length(const char *text);
int bump(int by);
void spin(void);
int crash(void);
uint8_t ring_count(const ring_t *ring);
int locals_demo(int count, int16_t step, struct point *where);

#endif
