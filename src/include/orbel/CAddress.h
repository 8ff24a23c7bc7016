#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// A target address with its memory area and process.
struct CAddress {
    ADDRESS m_aAddress = 0;
    short m_iArea = 0;
    BYTE m_byProcess = 0;
    BYTE m_byReserved = 0;
};

static_assert(sizeof(short) == 2, "memory area is 16 bits");
static_assert(sizeof(CAddress) == 8, "CAddress is eight bytes on the interface");
static_assert(offsetof(CAddress, m_aAddress) == 0, "CAddress::m_aAddress at byte 0");
static_assert(offsetof(CAddress, m_iArea) == 4, "CAddress::m_iArea at byte 4");
static_assert(offsetof(CAddress, m_byProcess) == 6, "CAddress::m_byProcess at byte 6");
static_assert(offsetof(CAddress, m_byReserved) == 7, "CAddress::m_byReserved at byte 7");

} // namespace kestrix
