#pragma once

#include <string>
#include <vector>

#include "SProfilerHistory.h"

namespace kestrix {

/// One entry of the profiler history.
class CProfilerHistory {
public:
    CProfilerHistory() = default;
    explicit CProfilerHistory(const SProfilerHistory& history) : m_history(history) {}

    DWORD getHandle() const { return m_history.m_dwHandle; }
    DWORD getValue() const { return m_history.m_dwValue; }
    QWORD getHitTime() const { return m_history.m_qwTime; }
    SProfilerHistory getSProfilerHistory() const { return m_history; }

    /// Bit 31 of the value: the area became active.
    bool isActive() const { return (m_history.m_dwValue & kActiveBit) != 0; }
    /// No bit of the entry tells it: false for every entry.
    bool isInactive() const { return false; }

    std::string toString() const;

private:
    static constexpr DWORD kActiveBit = 0x80000000u;

    SProfilerHistory m_history;
};

/// The list type of the history calls.
typedef std::vector<CProfilerHistory> ProfilerHistoryVector;

} // namespace kestrix
