#pragma once

#include <string>

#include "SType.h"

namespace kestrix {

/// Where a symbol lies, how many MAUs it takes and its type.
class CSymbolInfo {
public:
    CSymbolInfo(BYTE memArea, ADDRESS address, DWORD sizeMAUs, SType mType)
        : m_memArea(memArea), m_address(address), m_sizeMAUs(sizeMAUs), m_mType(mType)
    {
    }

    BYTE getMemArea() const { return m_memArea; }
    ADDRESS getAddress() const { return m_address; }
    DWORD getSizeMAUs() const { return m_sizeMAUs; }
    SType getMType() const { return m_mType; }
    std::string toString() const;

private:
    BYTE m_memArea;
    ADDRESS m_address;
    DWORD m_sizeMAUs;
    SType m_mType;
};

} // namespace kestrix
