/* Globals of many types for the expression tests. */
#include "types.h"

int8_t g_s8 = -5;
uint8_t g_u8 = 200;
int16_t g_s16 = -1234;
uint16_t g_u16 = 60000;
int32_t g_s32 = -100000;
uint32_t g_u32 = 4000000000u;
int64_t g_s64 = -5000000000LL;
uint64_t g_u64 = 18000000000000000000ULL;
char g_char = 'A';
_Bool g_bool = 1;
float g_float = 1.5f;
double g_double = -2.25;
enum color g_color = BLUE;
mode_t g_mode = MODE_OFF;
int g_array[5] = { 10, 20, 30, 40, 50 };
int g_matrix[2][3] = { { 1, 2, 3 }, { 4, 5, 6 } };
char g_text[16] = "hello";
const char *g_message = "hi there";
struct point g_point = { 3, -4 };
struct point *g_point_ptr = &g_point;
struct point *g_null = 0;
struct record g_records[2] = {
    { "first", { { 1, 2 }, { 3, 4 } }, { -1, 2, -3 }, { 1, 5, -3, 0xABCDE, 7 }, "one", &g_records[1], GREEN },
    { "second", { { 5, 6 }, { 7, 8 } }, { 100, 200, 300 }, { 0, 2, 7, 1, 9 }, "two", 0, RED },
};
union number g_number = { 0x3FC00000u };
ring_t g_ring = { { 1, 2, 3 }, 3, 0 };
binary_fn g_fn = add;
int *g_int_ptr = &g_array[1];
static int s_hidden = 77;
volatile int g_counter = 0;

int hidden_value(void)
{
    return s_hidden;
}
