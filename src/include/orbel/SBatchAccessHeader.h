#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Header of OrbelDebug2::BatchAccess: the number of items and how often and when they run.
struct SBatchAccessHeader {
    DWORD m_dwFlags = 0;
    DWORD m_dwNumItems = 0;
    DWORD m_dwNumRuns = 0;
    QWORD m_qwStartAtTime = 0;
    QWORD m_qwRunInterval = 0;
};

static_assert(sizeof(SBatchAccessHeader) == 32, "SBatchAccessHeader is 32 bytes on the interface");
static_assert(offsetof(SBatchAccessHeader, m_dwNumRuns) == 8, "m_dwNumRuns at byte 8");
static_assert(offsetof(SBatchAccessHeader, m_qwStartAtTime) == 16, "m_qwStartAtTime at byte 16");
static_assert(offsetof(SBatchAccessHeader, m_qwRunInterval) == 24, "m_qwRunInterval at byte 24");

} // namespace kestrix
