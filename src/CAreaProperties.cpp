#include "CAreaProperties.h"

#include <sstream>

namespace kestrix {

std::string CAreaProperties::toString() const
{
    std::ostringstream text;
    text << "CAreaProperties:" << "\n  areaName: " << m_name << "\n  handle: " << m_handle << "\n  address: "
         << m_address;
    return text.str();
}

} // namespace kestrix
