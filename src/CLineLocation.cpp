#include "CLineLocation.h"

#include <sstream>

namespace kestrix {

std::string CLineLocation::toString() const
{
    std::ostringstream text;
    text << "CLineLocation:" << "\n  fileName: " << m_fileName << "\n  lineNumber: " << m_lineNumber;
    return text.str();
}

} // namespace kestrix
