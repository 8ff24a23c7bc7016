#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Where a profiler recording starts: m_byEvent 0 at once, 1 at m_byMemArea and m_aAddress.
struct SStartingPoint {
    enum EEvent : BYTE {
        eventNone = 0,
        eventAddress = 1
    };

    BYTE m_byEvent = 0;
    BYTE m_byMemArea = 0;
    BYTE m_byDataSize = 0;
    BYTE m_byReserved = 0;
    ADDRESS m_aAddress = 0;
    ADDRESS m_aAddressRM = 0;
    DWORD m_dwDataAUX = 0;
    DWORD m_dwDataAUXRM = 0;
};

static_assert(sizeof(SStartingPoint) == 20, "SStartingPoint is twenty bytes on the interface");
static_assert(offsetof(SStartingPoint, m_aAddress) == 4, "m_aAddress at byte 4");
static_assert(offsetof(SStartingPoint, m_aAddressRM) == 8, "m_aAddressRM at byte 8");
static_assert(offsetof(SStartingPoint, m_dwDataAUX) == 12, "m_dwDataAUX at byte 12");
static_assert(offsetof(SStartingPoint, m_dwDataAUXRM) == 16, "m_dwDataAUXRM at byte 16");

} // namespace kestrix
