#include "CProfilerHistory.h"

#include <sstream>

namespace kestrix {

std::string CProfilerHistory::toString() const
{
    std::ostringstream text;
    text << "CProfilerHistory:" << "\n  handle: " << getHandle() << "\n  hitTime: " << getHitTime()
         << "\n  value: " << getValue() << "\n  isActive: " << isActive() << "\n  isInactive: " << isInactive();
    return text.str();
}

} // namespace kestrix
