#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {
namespace DebugService_JTAG {

/// Input record of a JTAG scan (SERVICE_Scan); Scan::EScanFlags in m_dwScanFlags.
struct SScan_IN {
    DWORD m_dwFlags = 0;
    DWORD m_dwScanFlags = 0;
    DWORD m_dwNumBits = 0;
    WORD m_wIRPrefix = 0;
    WORD m_wIRPostfix = 0;
    WORD m_wDRPrefix = 0;
    WORD m_wDRPostfix = 0;
};

static_assert(sizeof(SScan_IN) == 20, "SScan_IN is twenty bytes on the interface");
static_assert(offsetof(SScan_IN, m_dwNumBits) == 8, "m_dwNumBits at byte 8");
static_assert(offsetof(SScan_IN, m_wIRPrefix) == 12, "m_wIRPrefix at byte 12");
static_assert(offsetof(SScan_IN, m_wDRPostfix) == 18, "m_wDRPostfix at byte 18");

} // namespace DebugService_JTAG
} // namespace kestrix
