#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// One mapping of a virtual address range to physical addresses.
struct SProcessMappingItem {
    ADDRESS m_aVirtualStart = 0;
    ADDRESS m_aVirtualEnd = 0;
    ADDRESS m_aPhysicalStart = 0;
};

static_assert(sizeof(SProcessMappingItem) == 12, "SProcessMappingItem is twelve bytes on the interface");
static_assert(offsetof(SProcessMappingItem, m_aVirtualStart) == 0, "m_aVirtualStart at byte 0");
static_assert(offsetof(SProcessMappingItem, m_aVirtualEnd) == 4, "m_aVirtualEnd at byte 4");
static_assert(offsetof(SProcessMappingItem, m_aPhysicalStart) == 8, "m_aPhysicalStart at byte 8");

} // namespace kestrix
