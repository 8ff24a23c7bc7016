#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Six words of OrbelProfiler2::GetCapabilities. The caller writes m_dwVersion = 1; the answer
/// must keep it. m_dwCapabilities holds OrbelProfilerFlags::ECapabilities.
struct SProfilerCapabilities {
    static constexpr DWORD VERSION = 1;

    DWORD m_dwVersion = 0;
    DWORD m_dwCapabilities = 0;
    DWORD m_dwReserved = 0;
    DWORD m_dwNumExecAreas = 0;
    DWORD m_dwNumDataAreas = 0;
    /// Low 8 bits: the width of a single data area.
    DWORD m_dwSingleDataWidth = 0;
};

static_assert(sizeof(SProfilerCapabilities) == 24, "SProfilerCapabilities is 24 bytes on the interface");
static_assert(offsetof(SProfilerCapabilities, m_dwNumExecAreas) == 12, "number of exec areas at byte 12");
static_assert(offsetof(SProfilerCapabilities, m_dwSingleDataWidth) == 20, "single data width at byte 20");

} // namespace kestrix
