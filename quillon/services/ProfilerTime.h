#pragma once

#include <cstdint>
#include <limits>

namespace quillon::services {

/// Hits and times of one code area or one value of a data area, in cycles. A code area's period is one call
/// from its entry to its return; a data value's period lasts from the write that set it to the next write of
/// the area.
class ProfilerTime {
public:
    void addHit() { ++m_hits; }
    /// A period of `cycles`; it adds to the total only when `countsToTotal` (a recursive call's time is in its
    /// outermost call's already).
    void addPeriod(std::uint64_t cycles, bool countsToTotal = true);

    std::uint32_t hits() const { return m_hits; }
    std::uint64_t total() const { return m_total; }
    /// 0 before the first period.
    std::uint64_t min() const { return m_periods == 0 ? 0 : m_min; }
    std::uint64_t max() const { return m_max; }
    std::uint64_t periods() const { return m_periods; }

private:
    std::uint32_t m_hits = 0;
    std::uint64_t m_periods = 0;
    std::uint64_t m_total = 0;
    std::uint64_t m_min = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t m_max = 0;
};

} // namespace quillon::services
