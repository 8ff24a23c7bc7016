#pragma once

#include <cstddef>
#include <string>

#include "CCPUInfo.h"

namespace kestrix {

/// One memory area of a CPU; its index in the CPU's list is its memory area number.
struct SMemoryAreaInfo {
    const char* name;
    BYTE bitsPerMAU;
    ADDRESS firstAddress;
    ADDRESS lastAddress;
};

/// The memory areas of one CPU, in the order of their numbers.
struct MemoryAreaList {
    const SMemoryAreaInfo* rows;
    size_t count;
};

/// The built-in list of memory areas for a CPU code and variant.
MemoryAreaList getMemoryAreas(const CCPUInfo& info);

/// Bytes per minimal addressable unit of a memory area; 0 for an area the CPU does not have.
int bytesPerMAUOf(int memArea, const CCPUInfo& info);

} // namespace kestrix
