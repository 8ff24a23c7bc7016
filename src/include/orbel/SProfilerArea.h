#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// An area of the profiler by name, handle and address: the record of OrbelProfiler2::GetArea
/// (the key's field filled in, all three out) and the out record of AddArea.
struct SProfilerArea {
    /// Longest name, without its terminator.
    static constexpr DWORD MAX_NAME = 255;

    char m_szName[256] = {};
    DWORD m_dwHandle = 0;
    ADDRESS m_aAddress = 0;
};

static_assert(sizeof(SProfilerArea) == 264, "SProfilerArea is 264 bytes on the interface");
static_assert(offsetof(SProfilerArea, m_dwHandle) == 256, "handle at byte 256");
static_assert(offsetof(SProfilerArea, m_aAddress) == 260, "address at byte 260");

} // namespace kestrix
