#pragma once

#include <string>

#include "OrbelTypes.h"

namespace kestrix {

/// A memory area number and an address in it.
class CMemAddress {
public:
    CMemAddress(BYTE memArea, ADDRESS address) : m_memArea(memArea), m_address(address) {}

    BYTE getMemArea() const { return m_memArea; }
    ADDRESS getAddress() const { return m_address; }
    std::string toString() const;

private:
    BYTE m_memArea;
    ADDRESS m_address;
};

} // namespace kestrix
