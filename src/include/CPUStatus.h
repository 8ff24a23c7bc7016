#pragma once

#include <string>

#include "SCPUStatus.h"

namespace kestrix {

/// Snapshot of the CPU: state, stop reason (if it was asked for) and execution point.
class CPUStatus {
public:
    explicit CPUStatus(bool isStopReasonRequested);

    bool isMustInit() const;
    bool isStopped() const;
    bool isRunning() const;
    bool isReset() const;
    bool isHalted() const;
    bool isWaiting() const;
    bool isAttach() const;
    bool isIdle() const;

    /// The stop reason getters raise IllegalArgumentException if the reason was not asked
    /// for, and are false for a CPU that is not stopped.
    bool isStopReasonExplicit() const;
    bool isStopReasonBP() const;
    bool isStopReasonStep() const;
    bool isStopReasonHW() const;

    BYTE getExecutionArea() const { return m_status.m_byExecArea; }
    ADDRESS getExecutionPoint() const { return m_status.m_aExecPoint; }
    /// The record, for the interface to fill.
    SCPUStatus* getStructPtr() { return &m_status; }

    std::string toString() const;

private:
    BYTE state() const;
    bool hasStopReason(BYTE reason) const;

    SCPUStatus m_status;
    bool m_isStopReasonRequested;
};

} // namespace kestrix
