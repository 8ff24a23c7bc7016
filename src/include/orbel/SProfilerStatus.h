#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Status of OrbelProfiler2::GetStatus (OrbelProfilerFlags::EState, EStatusBits).
struct SProfilerStatus {
    BYTE m_byState = 0;
    BYTE m_byFlags = 0;
    BYTE m_byAnalysisError = 0;
    BYTE m_byReserved = 0;
    /// Samples recorded or analyzed, as the flags of GetStatus ask.
    DWORD m_dwNumSamples = 0;
};

static_assert(sizeof(SProfilerStatus) == 8, "SProfilerStatus is eight bytes on the interface");
static_assert(offsetof(SProfilerStatus, m_byAnalysisError) == 2, "analysis error at byte 2");
static_assert(offsetof(SProfilerStatus, m_dwNumSamples) == 4, "number of samples at byte 4");

} // namespace kestrix
