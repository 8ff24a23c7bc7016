#include "CProfilerStatus.h"

#include <sstream>

namespace kestrix {

std::string CProfilerStatus::toString() const
{
    std::ostringstream text;
    text << "CProfilerStatus:" << "\n  noOfAvailableSamples: " << getNoOfSamples() << "\n  isMustInit: " << isMustInit()
         << "\n  isIdle: " << isIdle() << "\n  isWaiting: " << isWaiting() << "\n  isActive: " << isActive()
         << "\n  isLoading: " << isLoading() << "\n  isErrorInBuffer: " << isErrorInBuffer()
         << "\n  isBufferOverrun: " << isBufferOverrun() << "\n  isRecordingError: " << isRecordingError()
         << "\n  analysisError: " << static_cast<int>(getAnalysisError());
    return text.str();
}

} // namespace kestrix
