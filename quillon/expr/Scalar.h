#pragma once

#include "expr/Value.h"

#include "debuginfo/TypeTable.h"

#include <cstdint>

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// A value as the automation interface passes it: a type code, a size in bits and up to eight
/// bytes of host-order value (an integer or address in the low bytes, the bytes above zero; a
/// float's or double's IEEE bits).
struct Scalar {
    enum class Code : std::uint8_t { Undefined = 0, Unsigned = 1, Signed = 2, Float = 3, Address = 4, Compound = 255 };

    Code code = Code::Undefined;
    std::uint8_t bitSize = 0;
    std::uint64_t bits = 0;

    /// Integers, chars, bools and enums by their signedness and size; floats; pointers and
    /// functions as 32-bit addresses; structs, unions and arrays as Compound of bit size 0 with no
    /// value; void as Undefined.
    static Scalar of(const Value& value, const target::Target& target);
    /// The value of a scalar with a C type of its kind and size. Throws ExprError for a kind or
    /// size no C type has.
    Value toValue(const debuginfo::TypeTable& types) const;
};

} // namespace quillon::expr
