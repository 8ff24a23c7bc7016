#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// One statistic of OrbelProfiler2::GetStatistics: an area (and for a data area one of its
/// values) with times in the configured time base and the number of hits.
struct SProfilerStatistic {
    DWORD m_dwHandle = 0;
    DWORD m_dwValue = 0;
    long long m_llTotalTime = 0;
    long long m_llMaxTime = 0;
    long long m_llMinTime = 0;
    DWORD m_dwNumHits = 0;
    DWORD m_dwReserved = 0;
};

static_assert(sizeof(SProfilerStatistic) == 40, "SProfilerStatistic is 40 bytes on the interface");
static_assert(offsetof(SProfilerStatistic, m_llTotalTime) == 8, "total time at byte 8");
static_assert(offsetof(SProfilerStatistic, m_llMaxTime) == 16, "max time at byte 16");
static_assert(offsetof(SProfilerStatistic, m_llMinTime) == 24, "min time at byte 24");
static_assert(offsetof(SProfilerStatistic, m_dwNumHits) == 32, "number of hits at byte 32");

} // namespace kestrix
