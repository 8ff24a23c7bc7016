#include "services/ProfilerTime.h"

#include <algorithm>

namespace quillon::services {

void ProfilerTime::addPeriod(std::uint64_t cycles, bool countsToTotal)
{
    ++m_periods;
    m_min = std::min(m_min, cycles);
    m_max = std::max(m_max, cycles);
    if (countsToTotal) {
        m_total += cycles;
    }
}

} // namespace quillon::services
