#include "CProfilerCapabilities.h"

#include <sstream>

namespace kestrix {

std::string CProfilerCapabilities::toString() const
{
    std::ostringstream text;
    text << "CProfilerCapabilities:" << "\n  numExecAreas: " << getNumExecAreas()
         << "\n  numDataAreas: " << getNumDataAreas() << "\n  singleDataWidth: " << getSingleDataWidth()
         << "\n  isAvailable: " << isAvailable() << "\n  canUseStartingPoint: " << canUseStartingPoint()
         << "\n  canProfileExec: " << canProfileExec() << "\n  canProfileFuncLines: " << canProfileFuncLines()
         << "\n  canProfileData: " << canProfileData() << "\n  isSingleData: " << isSingleData()
         << "\n  isSingleDataAddress: " << isSingleDataAddress() << "\n  isSingleDataSize: " << isSingleDataSize();
    return text.str();
}

} // namespace kestrix
