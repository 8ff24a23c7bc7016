#pragma once

#include <cstddef>

#include "SType.h"

namespace kestrix {

/// Name and type of one register. The name is a fixed text of 15 characters and a terminator.
struct SRegisterInfo {
    char m_szRegName[16] = {};
    SType m_Type;
};

static_assert(sizeof(SRegisterInfo) == 18, "SRegisterInfo is eighteen bytes on the interface");
static_assert(offsetof(SRegisterInfo, m_szRegName) == 0, "SRegisterInfo::m_szRegName at byte 0");
static_assert(offsetof(SRegisterInfo, m_Type) == 16, "SRegisterInfo::m_Type at byte 16");

} // namespace kestrix
