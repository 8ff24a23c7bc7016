#include "CMemAddress.h"

#include <sstream>

namespace kestrix {

std::string CMemAddress::toString() const
{
    std::ostringstream text;
    text << "CMemAddress:" << "\n  memArea: " << static_cast<int>(m_memArea) << "\n  address: " << m_address;
    return text.str();
}

} // namespace kestrix
