#pragma once

#include "debuginfo/LocationList.h"
#include "debuginfo/Type.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace quillon::debuginfo {

/// A variable or parameter of the DWARF: global, file static, function-local static, local.
struct Variable {
    std::string name;
    const Type* type = nullptr;
    LocationList location;                ///< where it lives, by program counter; empty: optimized out
    std::optional<std::uint32_t> address; ///< static storage: its fixed address
    std::string declFile;                 ///< full path of the declaring file
    unsigned declLine = 0;
    bool isParameter = false;
    bool isExternal = false;              ///< visible to other units (not `static`)
    std::size_t unit = 0;                 ///< index of its compile unit
};

} // namespace quillon::debuginfo
