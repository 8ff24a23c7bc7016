#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Type code and bit size of a scalar as it crosses the automation interface.
struct SType {
    enum EType {
        tUndefined = 0,
        tUnsigned = 1,
        tSigned = 2,
        tFloat = 3,
        tAddress = 4,
        tCompound = 255
    };

    BYTE m_byType = tUndefined;
    BYTE m_byBitSize = 0;
};

static_assert(sizeof(SType) == 2, "SType is two bytes on the interface");
static_assert(offsetof(SType, m_byType) == 0, "SType::m_byType at byte 0");
static_assert(offsetof(SType, m_byBitSize) == 1, "SType::m_byBitSize at byte 1");

} // namespace kestrix
