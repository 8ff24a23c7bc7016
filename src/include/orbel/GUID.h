#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// A 128-bit identifier of a class, an interface or a service.
struct GUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
};

constexpr bool operator==(const GUID& a, const GUID& b)
{
    if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) {
        return false;
    }
    for (int i = 0; i < 8; ++i) {
        if (a.Data4[i] != b.Data4[i]) {
            return false;
        }
    }
    return true;
}

constexpr bool operator!=(const GUID& a, const GUID& b)
{
    return !(a == b);
}

static_assert(sizeof(GUID) == 16, "GUID is sixteen bytes");

} // namespace kestrix
