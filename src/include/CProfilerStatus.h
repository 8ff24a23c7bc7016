#pragma once

#include <string>

#include "SProfilerStatus.h"

namespace kestrix {

/// State of the profiler: its state, the flags of its buffer and the number of samples.
class CProfilerStatus {
public:
    explicit CProfilerStatus(const SProfilerStatus& status) : m_status(status) {}

    bool isMustInit() const { return m_status.m_byState == 0; }
    bool isIdle() const { return m_status.m_byState == 1; }
    bool isWaiting() const { return m_status.m_byState == 2; }
    bool isActive() const { return m_status.m_byState == 3; }

    bool isErrorInBuffer() const { return (m_status.m_byFlags & 0x01) != 0; }
    bool isBufferOverrun() const { return (m_status.m_byFlags & 0x02) != 0; }
    bool isLoading() const { return (m_status.m_byFlags & 0x04) != 0; }
    bool isRecordingError() const { return (m_status.m_byFlags & 0x08) != 0; }
    /// Any error bit; loading alone is none.
    bool isError() const { return (m_status.m_byFlags & 0x0B) != 0; }

    BYTE getAnalysisError() const { return m_status.m_byAnalysisError; }
    DWORD getNoOfSamples() const { return m_status.m_dwNumSamples; }

    std::string toString() const;

private:
    SProfilerStatus m_status;
};

} // namespace kestrix
