#pragma once

// Scalar types of the automation interface, with the widths they have there.

#include <cstdint>

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef uint64_t QWORD;
typedef int32_t HRESULT;
typedef uint32_t ADDRESS;
typedef uint32_t ULONG;

static_assert(sizeof(DWORD) == 4, "DWORD is 32 bits");
