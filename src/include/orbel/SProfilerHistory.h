#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// One entry of the profiler's history: area handle, value (bit 31: active) and time stamp.
struct SProfilerHistory {
    DWORD m_dwHandle = 0;
    DWORD m_dwValue = 0;
    QWORD m_qwTime = 0;
};

static_assert(sizeof(SProfilerHistory) == 16, "SProfilerHistory is sixteen bytes on the interface");
static_assert(offsetof(SProfilerHistory, m_dwHandle) == 0, "m_dwHandle at byte 0");
static_assert(offsetof(SProfilerHistory, m_dwValue) == 4, "m_dwValue at byte 4");
static_assert(offsetof(SProfilerHistory, m_qwTime) == 8, "m_qwTime at byte 8");

} // namespace kestrix
