#pragma once

#include <cstddef>

#include "CAddress.h"

namespace kestrix {

/// Eight bytes of host-order value; the SType beside it tells which member is valid. Values of
/// fewer than 64 bits occupy the low bytes. A new record is all zero.
struct SValue {
    SValue() : m_qwValue(0) {}

    union {
        QWORD m_qwValue;
        long long m_llValue;
        DWORD m_dwValue;
        int m_iValue;
        WORD m_wValue;
        short m_sValue;
        BYTE m_byValue;
        signed char m_cValue;
        float m_fValue;
        double m_dValue;
        CAddress m_address;
    };
};

static_assert(sizeof(SValue) == 8, "SValue is eight bytes on the interface");
static_assert(offsetof(SValue, m_qwValue) == 0 && offsetof(SValue, m_byValue) == 0
                  && offsetof(SValue, m_dValue) == 0 && offsetof(SValue, m_address) == 0,
              "every SValue member starts at byte 0");

} // namespace kestrix
