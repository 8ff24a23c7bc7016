#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {
namespace DebugService_JTAG {

/// Input record of the JTAG line service (SERVICE_Line): sets m_dwLine to m_dwState (0 or 1).
struct SLine_IN {
    /// Line of the OCD port's tristate.
    static constexpr DWORD LINE_OCD_TRISTATE = 9;

    DWORD m_dwFlags = 0;
    DWORD m_dwLine = 0;
    DWORD m_dwState = 0;
};

static_assert(sizeof(SLine_IN) == 12, "SLine_IN is twelve bytes on the interface");
static_assert(offsetof(SLine_IN, m_dwLine) == 4, "m_dwLine at byte 4");
static_assert(offsetof(SLine_IN, m_dwState) == 8, "m_dwState at byte 8");

} // namespace DebugService_JTAG
} // namespace kestrix
