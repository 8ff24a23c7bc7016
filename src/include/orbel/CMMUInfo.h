#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

struct CMMUInfo {
    WORD m_wType = 0;
};

static_assert(sizeof(CMMUInfo) == 2, "CMMUInfo is two bytes on the interface");
static_assert(offsetof(CMMUInfo, m_wType) == 0, "CMMUInfo::m_wType at byte 0");

} // namespace kestrix
