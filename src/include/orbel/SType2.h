#pragma once

#include "SType.h"

namespace kestrix {

/// An SType with a second type byte and two words behind it. The offsets of the derived
/// fields are checked by a unit test: offsetof is not defined for a type with a base.
struct SType2 : public SType {
    BYTE m_byType2 = 0;
    BYTE m_byReserved = 0;
    DWORD m_dw1 = 0;
    DWORD m_dw2 = 0;
};

static_assert(sizeof(SType2) == 12, "SType2 is twelve bytes on the interface");

} // namespace kestrix
