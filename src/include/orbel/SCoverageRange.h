#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// An address range of coverage, both ends included.
struct SCoverageRange {
    ADDRESS m_aAddress = 0;
    ADDRESS m_aEnd = 0;
};

static_assert(sizeof(SCoverageRange) == 8, "SCoverageRange is eight bytes on the interface");
static_assert(offsetof(SCoverageRange, m_aEnd) == 4, "m_aEnd at byte 4");

} // namespace kestrix
