#pragma once

#include <cstdint>

namespace quillon::debuginfo {
class Type;
}

namespace quillon::services {

/// Kind and width of a value as the automation interface carries it; the codes are the interface's.
struct ScalarType {
    enum Code : std::uint8_t { Undefined = 0, Unsigned = 1, Signed = 2, Float = 3, Address = 4, Compound = 255 };

    Code code = Undefined;
    unsigned bits = 0;

    /// The kind of a DWARF type: signed and unsigned integers, characters, booleans and enums by their
    /// encoding, floats, pointers as addresses, and everything else (arrays, structs, unions) as compound.
    /// The width is the type's size in bits, at most 255 for a compound. Undefined for no type or void.
    static ScalarType of(const debuginfo::Type* type);

    bool operator==(const ScalarType& other) const { return code == other.code && bits == other.bits; }
};

} // namespace quillon::services
