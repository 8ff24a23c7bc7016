#pragma once

#include <map>
#include <string>
#include <vector>

#include "OrbelTypes.h"

namespace kestrix {

/// Profiler statistic of one area, laid out as the record that the profiler interface fills.
class CProfilerStatistic {
public:
    CProfilerStatistic() = default;
    CProfilerStatistic(const CProfilerStatistic& other) = default;
    CProfilerStatistic& operator=(const CProfilerStatistic& other) = default;
    CProfilerStatistic(DWORD handle, DWORD value, long long totalTime, long long maxTime, long long minTime,
                       DWORD numHits)
        : m_handle(handle), m_value(value), m_totalTime(totalTime), m_maxTime(maxTime), m_minTime(minTime),
          m_numHits(numHits)
    {
    }

    DWORD getHandle() const { return m_handle; }
    DWORD getValue() const { return m_value; }
    long long getTotalTime() const { return m_totalTime; }
    long long getMaxTime() const { return m_maxTime; }
    long long getMinTime() const { return m_minTime; }
    DWORD getNumHits() const { return m_numHits; }

    std::string toString() const;

private:
    // The interface writes these fields in place: keep their order and widths.
    DWORD m_handle = 0;
    DWORD m_value = 0;
    long long m_totalTime = 0;
    long long m_maxTime = 0;
    long long m_minTime = 0;
    DWORD m_numHits = 0;

    friend struct CProfilerStatisticLayout;
};

/// The list type of the statistic calls.
typedef std::vector<CProfilerStatistic> ProfilerStatisticVector;
/// Profiler statistics per area name, one or a list of them.
typedef std::map<std::string, CProfilerStatistic> ProfilerStatisticMap;
typedef std::map<std::string, ProfilerStatisticVector> ProfilerStatisticVectorMap;

} // namespace kestrix
