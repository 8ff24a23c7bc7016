#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

struct SInfo {
    DWORD m_dwNumRegisters = 0;
};

static_assert(sizeof(SInfo) == 4, "SInfo is four bytes on the interface");
static_assert(offsetof(SInfo, m_dwNumRegisters) == 0, "SInfo::m_dwNumRegisters at byte 0");

} // namespace kestrix
