/* The same bit fields in a DWARF 5 unit, where they carry DW_AT_data_bit_offset. */
#include "types.h"

struct flags v5_flags = { 0, 2, 3, 4095, 9 };
struct packed_bits v5_packed;

struct flags *v5_flags_address(void)
{
    v5_packed.mid = 1;
    return &v5_flags;
}
