#include "CSymbolInfo.h"

#include <sstream>

namespace kestrix {

std::string CSymbolInfo::toString() const
{
    std::ostringstream text;
    text << "CSymbolInfo:" << "\n  memArea: " << static_cast<int>(m_memArea) << "\n  address: " << m_address
         << "\n  sizeMAUs: " << m_sizeMAUs << "\n  type: " << static_cast<int>(m_mType.m_byType)
         << "\n  bitSize: " << static_cast<int>(m_mType.m_byBitSize);
    return text.str();
}

} // namespace kestrix
