#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// CPU code and variant of the target.
struct CCPUInfo {
    WORD m_wCPU = 0;
    WORD m_wVariant = 0;
};

static_assert(sizeof(CCPUInfo) == 4, "CCPUInfo is four bytes on the interface");
static_assert(offsetof(CCPUInfo, m_wCPU) == 0, "CCPUInfo::m_wCPU at byte 0");
static_assert(offsetof(CCPUInfo, m_wVariant) == 2, "CCPUInfo::m_wVariant at byte 2");

} // namespace kestrix
