#pragma once

#include "debuginfo/LocationOp.h"

#include <cstdint>
#include <vector>

namespace quillon::debuginfo {

/// Where a variable lives, by program counter: one expression valid everywhere, or a list of
/// address ranges each with its own expression (optimized code). Empty: optimized out.
class LocationList {
public:
    struct Entry {
        std::uint64_t low = 0;  ///< [low, high) of program counters
        std::uint64_t high = 0;
        LocationExpression expression;
    };

    LocationList() = default;
    /// One expression for all program counters.
    static LocationList always(LocationExpression expression);

    void add(Entry entry) { m_entries.push_back(std::move(entry)); }

    const std::vector<Entry>& entries() const { return m_entries; }
    bool empty() const { return m_entries.empty(); }
    /// Whether one expression holds for every program counter.
    bool isSingle() const;
    /// The expression valid at the program counter; nullptr where the list has none.
    const LocationExpression* at(std::uint32_t pc) const;

private:
    std::vector<Entry> m_entries;
};

} // namespace quillon::debuginfo
