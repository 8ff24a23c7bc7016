/* Globals of every type kind; compiled at -O0 with DWARF 4. */
#include "types.h"

char g_char = 'q';
signed char g_schar = -5;
unsigned char g_uchar = 250;
short g_short = -300;
unsigned short g_ushort = 60000;
int g_int = -70000;
unsigned int g_uint = 4000000000u;
long g_long = -5;
unsigned long g_ulong = 5;
long long g_llong = -1234567890123ll;
unsigned long long g_ullong = 1234567890123ull;
float g_float = 1.5f;
double g_double = -2.25;
long double g_ldouble = 3.5;
_Bool g_bool = 1;

enum color g_color = COLOR_BLUE;
enum delta g_delta = DELTA_DOWN;
enum wide g_wide = WIDE_BIG;

struct flags g_flags = { 1, 5, -3, 1000, 7 };
struct packed_bits g_packed = { 3, 12, 300, 100 };
union number g_number = { .i = 42 };
struct point g_point = { 3, -4 };
struct segment g_segment = { { 1, 2 }, { 3, 4 } };
struct shape g_shape = { "triangle", { { { 0, 0 }, { 4, 0 } } }, { { 1, 2, 3 }, { 4, 5, 6 } },
                         COLOR_GREEN, { 0, 1, 2, 3, 4 }, { .i = 7 }, 0 };
struct node g_nodes[3];
node_t g_head;
node_ptr g_cursor = &g_nodes[1];
struct message *g_message;
struct packet g_packet = { 1, { 0x11223344u } };

tick_t g_ticks_typed;
timeout_t g_timeout = 1000;
const int g_limit = 42;
volatile uint32_t g_volatile;
const char *const g_banner = "debuginfo";
const volatile uint16_t *g_status_reg = (const volatile uint16_t *)0x40001000u;
char *const *g_argv_like;

static int add(int a, int b) { return a + b; }
static int sub(int a, int b) { return a - b; }

int (*g_handler)(int, int) = add;
binary_op g_ops[2] = { add, sub };
void (*g_callback)(void);
int (*g_printf_like)(const char *, ...);
char (*g_row)[16] = &g_shape.name;
int32_t (*g_grid_row)[3] = g_shape.grid;

/* The linker keeps only what is referenced: this table keeps every global above. */
const volatile void *g_keep[] = {
    &g_char, &g_schar, &g_uchar, &g_short, &g_ushort, &g_int, &g_uint, &g_long, &g_ulong, &g_llong,
    &g_ullong, &g_float, &g_double, &g_ldouble, &g_bool, &g_color, &g_delta, &g_wide, &g_flags,
    &g_packed, &g_number, &g_point, &g_segment, &g_shape, &g_nodes, &g_head, &g_cursor, &g_message,
    &g_packet, &g_ticks_typed, &g_timeout, &g_limit, &g_volatile, &g_banner, &g_status_reg,
    &g_argv_like, &g_handler, &g_ops, &g_callback, &g_printf_like, &g_row, &g_grid_row,
};

int types_touch(void)
{
    g_head.next = &g_nodes[0];
    g_nodes[0].next = &g_nodes[1];
    g_nodes[1].prev = &g_nodes[0];
    g_volatile++;
    return g_handler(g_int, g_limit) + g_ops[1](g_short, 1) + (int)g_banner[0] + v5_flags_address()->mode
           + (g_keep[g_int & 1] != 0);
}
