#pragma once

#include "OrbelTypes.h"

namespace kestrix {
namespace DebugService_JTAG {

/// Output record of the JTAG line service (SERVICE_Line).
struct SLine_OUT {
    DWORD m_dwState = 0;
};

static_assert(sizeof(SLine_OUT) == 4, "SLine_OUT is four bytes on the interface");

} // namespace DebugService_JTAG
} // namespace kestrix
