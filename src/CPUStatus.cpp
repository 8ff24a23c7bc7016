#include "CPUStatus.h"

#include <sstream>

#include "IllegalArgumentException.h"
#include "OrbelDebugFlags.h"

namespace kestrix {

CPUStatus::CPUStatus(bool isStopReasonRequested) : m_isStopReasonRequested(isStopReasonRequested) {}

BYTE CPUStatus::state() const
{
    return m_status.m_byStatus & OrbelDebugFlags::cpuStateMask;
}

bool CPUStatus::isMustInit() const
{
    return state() == OrbelDebugFlags::cpuMustInit;
}

bool CPUStatus::isStopped() const
{
    return state() == OrbelDebugFlags::cpuStopped;
}

bool CPUStatus::isRunning() const
{
    return state() == OrbelDebugFlags::cpuRunning;
}

bool CPUStatus::isReset() const
{
    return state() == OrbelDebugFlags::cpuReset;
}

bool CPUStatus::isHalted() const
{
    return state() == OrbelDebugFlags::cpuHalted;
}

bool CPUStatus::isWaiting() const
{
    return state() == OrbelDebugFlags::cpuWaiting;
}

bool CPUStatus::isAttach() const
{
    return state() == OrbelDebugFlags::cpuAttach;
}

bool CPUStatus::isIdle() const
{
    return state() == OrbelDebugFlags::cpuIdle;
}

bool CPUStatus::hasStopReason(BYTE reason) const
{
    if (!m_isStopReasonRequested) {
        throw IllegalArgumentException(KX_POS, "Stop reason is not available, because it was not requested!");
    }
    return isStopped() && (m_status.m_byStatus & OrbelDebugFlags::srMask) == reason;
}

bool CPUStatus::isStopReasonExplicit() const
{
    return hasStopReason(OrbelDebugFlags::srExplicit);
}

bool CPUStatus::isStopReasonBP() const
{
    return hasStopReason(OrbelDebugFlags::srBreakpoint);
}

bool CPUStatus::isStopReasonStep() const
{
    return hasStopReason(OrbelDebugFlags::srStep);
}

bool CPUStatus::isStopReasonHW() const
{
    return hasStopReason(OrbelDebugFlags::srHardware);
}

std::string CPUStatus::toString() const
{
    // The two bytes go in as characters, as the stream inserts a char.
    std::ostringstream text;
    text << "CPUStatus:\n"
         << "  status: " << static_cast<char>(m_status.m_byStatus) << "  execArea: "
         << static_cast<char>(m_status.m_byExecArea) << "  execAddress: " << m_status.m_aExecPoint;
    return text.str();
}

} // namespace kestrix
