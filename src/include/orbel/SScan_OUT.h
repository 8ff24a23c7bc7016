#pragma once

#include "OrbelTypes.h"

namespace kestrix {
namespace DebugService_JTAG {

/// Output record of a JTAG scan (SERVICE_Scan).
struct SScan_OUT {
    DWORD m_dwResult = 0;
};

static_assert(sizeof(SScan_OUT) == 4, "SScan_OUT is four bytes on the interface");

} // namespace DebugService_JTAG
} // namespace kestrix
