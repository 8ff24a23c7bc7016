#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

struct SProfilerEncode {
    BYTE m_byEncode = 0;
    BYTE m_byParam1 = 0;
    BYTE m_byParam2 = 0;
    BYTE m_byParam3 = 0;
};

static_assert(sizeof(SProfilerEncode) == 4, "SProfilerEncode is four bytes on the interface");
static_assert(offsetof(SProfilerEncode, m_byParam3) == 3, "m_byParam3 at byte 3");

} // namespace kestrix
