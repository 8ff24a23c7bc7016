#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// CPU status of OrbelDebug::GetCPUStatus. m_byStatus holds the CPU state in bits 0 to 2 and,
/// when asked for, the stop reason in bits 4 to 6 (OrbelDebugFlags::ECPUState, EStopReason).
struct SCPUStatus {
    BYTE m_byStatus = 0;
    /// Memory area of the execution point.
    BYTE m_byExecArea = 0;
    BYTE m_abyReserved[2] = {};
    ADDRESS m_aExecPoint = 0;
};

static_assert(sizeof(SCPUStatus) == 8, "SCPUStatus is eight bytes on the interface");
static_assert(offsetof(SCPUStatus, m_byExecArea) == 1, "execution area at byte 1");
static_assert(offsetof(SCPUStatus, m_aExecPoint) == 4, "execution point at byte 4");

} // namespace kestrix
