#include "CProfilerStatistic.h"

#include <cstddef>
#include <sstream>

namespace kestrix {

// The profiler interface writes an array of these records in place.
struct CProfilerStatisticLayout {
    static constexpr bool ok = offsetof(CProfilerStatistic, m_handle) == 0
                               && offsetof(CProfilerStatistic, m_value) == 4
                               && offsetof(CProfilerStatistic, m_totalTime) == 8
                               && offsetof(CProfilerStatistic, m_maxTime) == 16
                               && offsetof(CProfilerStatistic, m_minTime) == 24
                               && offsetof(CProfilerStatistic, m_numHits) == 32;
};
static_assert(sizeof(CProfilerStatistic) == 40, "CProfilerStatistic is the 40-byte record of the interface");
static_assert(CProfilerStatisticLayout::ok, "CProfilerStatistic fields at the interface's offsets");

std::string CProfilerStatistic::toString() const
{
    std::ostringstream text;
    text << "CProfilerStatistic:" << "\n  handle: " << m_handle << "\n  numHits: " << m_numHits
         << "\n  value: " << m_value << "\n  maxTime: " << m_maxTime << "\n  minTime: " << m_minTime
         << "\n  totalTime: " << m_totalTime;
    return text.str();
}

} // namespace kestrix
