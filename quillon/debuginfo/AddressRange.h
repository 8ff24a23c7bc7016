#pragma once

#include <cstdint>

namespace quillon::debuginfo {

/// Half-open range [low, high) of target addresses.
struct AddressRange {
    std::uint32_t low = 0;
    std::uint32_t high = 0;

    bool contains(std::uint32_t address) const { return address >= low && address < high; }
    bool operator==(const AddressRange& other) const { return low == other.low && high == other.high; }
};

} // namespace quillon::debuginfo
