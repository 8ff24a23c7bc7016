#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Version of the automation library, filled by orbel_GetInfo. A new record carries its size
/// and version 0. The version is packed: bits 27 to 31 major, 22 to 26 minor, 12 to 21 build,
/// 2 to 8 subbuild.
struct SOrbelInfo {
    DWORD m_dwSize = sizeof(SOrbelInfo);
    DWORD m_dwVersion = 0;
};

static_assert(sizeof(SOrbelInfo) == 8, "SOrbelInfo is eight bytes on the interface");
static_assert(offsetof(SOrbelInfo, m_dwSize) == 0, "SOrbelInfo::m_dwSize at byte 0");
static_assert(offsetof(SOrbelInfo, m_dwVersion) == 4, "SOrbelInfo::m_dwVersion at byte 4");

} // namespace kestrix
