#pragma once

#include "debuginfo/AddressRange.h"

#include <string>
#include <vector>

namespace quillon::debuginfo {

/// A compile unit: one source file as the compiler saw it.
struct CompileUnit {
    std::string path;      ///< full path of the primary source file
    std::string name;      ///< DW_AT_name as written
    std::string compDir;   ///< the compiler's working directory
    std::string producer;  ///< compiler and flags
    unsigned language = 0; ///< DW_LANG_*
    unsigned version = 0;  ///< DWARF version
    std::vector<AddressRange> ranges;
    /// Some variable of the unit has a location list: optimized code, whose locations hold at
    /// every instruction, the function entry included.
    bool hasLocationLists = false;
};

} // namespace quillon::debuginfo
