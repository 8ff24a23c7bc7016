#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// One access of OrbelDebug2::BatchAccess.
struct SBatchAccessItem {
    BYTE m_byFlags = 0;
    BYTE m_bySize = 0;
    BYTE m_byMemArea = 0;
    BYTE m_byReserved = 0;
    ADDRESS m_aAddress = 0;
    BYTE m_abyData[8] = {};
    QWORD m_qwTimeOffset = 0;
};

static_assert(sizeof(SBatchAccessItem) == 24, "SBatchAccessItem is 24 bytes on the interface");
static_assert(offsetof(SBatchAccessItem, m_aAddress) == 4, "m_aAddress at byte 4");
static_assert(offsetof(SBatchAccessItem, m_abyData) == 8, "m_abyData at byte 8");
static_assert(offsetof(SBatchAccessItem, m_qwTimeOffset) == 16, "m_qwTimeOffset at byte 16");

} // namespace kestrix
