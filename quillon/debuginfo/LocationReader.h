#pragma once

#include "debuginfo/DwarfDie.h"
#include "debuginfo/LocationList.h"
#include "debuginfo/Type.h"

namespace quillon::debuginfo {

/// Copies location descriptions out of libdw: single expressions and location lists
/// (.debug_loc and .debug_loclists alike), and constant values as implicit values.
class LocationReader {
public:
    /// The location list of a location attribute (DW_AT_location, DW_AT_frame_base); empty if the
    /// entry has none.
    static LocationList read(const DwarfDie& entry, int attribute);
    /// DW_AT_const_value of a variable of the type, as an expression that yields its bytes; empty
    /// if the entry has none.
    static LocationList constant(const DwarfDie& entry, const Type* type);
};

} // namespace quillon::debuginfo
