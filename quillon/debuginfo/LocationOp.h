#pragma once

#include <cstdint>
#include <vector>

namespace quillon::debuginfo {

/// One operation of a DWARF expression, copied out of libdw so that it outlives the reader.
struct LocationOp {
    std::uint8_t atom = 0;      ///< DW_OP_*
    std::uint64_t number = 0;   ///< first operand
    std::uint64_t number2 = 0;  ///< second operand (DW_OP_bregx offset, DW_OP_bit_piece offset)
    std::uint64_t offset = 0;   ///< byte offset in the expression: the target of DW_OP_skip and DW_OP_bra
    std::vector<std::uint8_t> block; ///< DW_OP_implicit_value: the value's bytes
};

/// A DWARF expression or location description.
using LocationExpression = std::vector<LocationOp>;

} // namespace quillon::debuginfo
