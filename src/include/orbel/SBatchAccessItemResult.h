#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Result of one access of OrbelDebug2::BatchAccess.
struct SBatchAccessItemResult {
    BYTE m_byResult = 0;
    BYTE m_abyData[8] = {};
    QWORD m_qwTimeStamp = 0;
};

static_assert(sizeof(SBatchAccessItemResult) == 24, "SBatchAccessItemResult is 24 bytes on the interface");
static_assert(offsetof(SBatchAccessItemResult, m_abyData) == 1, "m_abyData at byte 1");
static_assert(offsetof(SBatchAccessItemResult, m_qwTimeStamp) == 16, "m_qwTimeStamp at byte 16");

} // namespace kestrix
