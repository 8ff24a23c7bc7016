#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Data of OrbelIDE::Application: a window rectangle, in for move and out for every window
/// command, and Quillon's process id, out.
struct SApplicationData {
    DWORD m_dwLeft = 0;
    DWORD m_dwTop = 0;
    DWORD m_dwRight = 0;
    DWORD m_dwBottom = 0;
    DWORD m_dwPID = 0;
};

static_assert(sizeof(SApplicationData) == 20, "SApplicationData is twenty bytes on the interface");
static_assert(offsetof(SApplicationData, m_dwBottom) == 12, "bottom at byte 12");
static_assert(offsetof(SApplicationData, m_dwPID) == 16, "process id at byte 16");

} // namespace kestrix
