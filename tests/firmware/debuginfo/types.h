/* Types of the debug information tests: every kind the reader models. */
#ifndef TYPES_H
#define TYPES_H

#include <stdint.h>

struct point {
    int16_t x;
    int16_t y;
};

struct segment {
    struct point from;
    struct point to;
};

/* Short enums: one byte unsigned, one byte signed, four bytes. */
enum color { COLOR_RED, COLOR_GREEN = 5, COLOR_BLUE = 200 };
enum delta { DELTA_DOWN = -1, DELTA_NONE = 0, DELTA_UP = 1 };
enum wide { WIDE_SMALL = 1, WIDE_BIG = 0x12345 };

/* Bit fields in one 32-bit container, then a plain byte behind them. */
struct flags {
    unsigned int ready : 1;
    unsigned int mode : 3;
    signed int level : 4;
    unsigned int count : 12;
    uint8_t tail;
};

/* Bit fields in 8- and 16-bit containers; 'mid' does not fit behind 'hi' and moves on. */
struct packed_bits {
    uint8_t lo : 4;
    uint8_t hi : 4;
    uint16_t mid : 9;
    uint16_t top : 7;
};

union number {
    int32_t i;
    float f;
    uint8_t bytes[8];
    double d;
};

struct node {
    int value;
    struct node *next;
    struct node *prev;
};

struct message {
    uint16_t length;
    uint8_t payload[];
};

struct packet {
    uint8_t kind;
    union {
        uint32_t word;
        uint8_t raw[4];
    };
};

struct shape {
    char name[16];
    struct segment edges[3];
    int32_t grid[2][3];
    enum color color;
    struct flags flags;
    union number value;
    const struct shape *parent;
};

typedef uint32_t tick_t;
typedef tick_t timeout_t;
typedef struct node node_t;
typedef node_t *node_ptr;
typedef int (*binary_op)(int, int);

int types_touch(void);
struct flags *v5_flags_address(void);

#endif
