#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

struct SProcessID {
    BYTE m_byType = 0;
    DWORD m_dwPID = 0;
};

static_assert(sizeof(SProcessID) == 8, "SProcessID is eight bytes on the interface");
static_assert(offsetof(SProcessID, m_byType) == 0, "SProcessID::m_byType at byte 0");
static_assert(offsetof(SProcessID, m_dwPID) == 4, "SProcessID::m_dwPID at byte 4");

} // namespace kestrix
