#pragma once

#include <string>

#include "SProfilerCapabilities.h"

namespace kestrix {

/// What the profiler of Quillon can do: the six words of its capabilities, as they came.
class CProfilerCapabilities {
public:
    CProfilerCapabilities() = default;
    explicit CProfilerCapabilities(const SProfilerCapabilities& capabilities) : m_capabilities(capabilities) {}

    DWORD getNumExecAreas() const { return m_capabilities.m_dwNumExecAreas; }
    DWORD getNumDataAreas() const { return m_capabilities.m_dwNumDataAreas; }
    /// Low 8 bits of the last word.
    DWORD getSingleDataWidth() const { return m_capabilities.m_dwSingleDataWidth & 0xFFu; }

    bool isAvailable() const { return hasBit(0); }
    bool canUseStartingPoint() const { return hasBit(1); }
    bool canProfileExec() const { return hasBit(2); }
    bool canProfileFuncLines() const { return hasBit(3); }
    bool canProfileData() const { return hasBit(4); }
    bool isSingleData() const { return hasBit(5); }
    bool isSingleDataAddress() const { return hasBit(6); }
    bool isSingleDataSize() const { return hasBit(7); }

    std::string toString() const;

private:
    bool hasBit(unsigned bit) const { return (m_capabilities.m_dwCapabilities >> bit & 1u) != 0; }

    SProfilerCapabilities m_capabilities;
};

} // namespace kestrix
