#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// State of Quillon's build manager, filled by OrbelProject::GetBuildStatus and kept by value.
class CBuildStatus {
public:
    enum EState : DWORD {
        stateIdle = 0,
        stateIdleWithError = 1,
        stateConfigError = 2,
        stateActive = 3
    };

    bool isIdle() const { return m_dwState == stateIdle; }
    bool isIdleWError() const { return m_dwState == stateIdleWithError; }
    bool isConfigError() const { return m_dwState == stateConfigError; }
    bool isActive() const { return m_dwState == stateActive; }
    DWORD getNumErrors() const { return m_dwNumErrors; }
    DWORD getNumWarnings() const { return m_dwNumWarnings; }

    DWORD m_dwState = stateIdle;
    DWORD m_dwNumErrors = 0;
    DWORD m_dwNumWarnings = 0;
};

static_assert(sizeof(CBuildStatus) == 12, "CBuildStatus is twelve bytes on the interface");
static_assert(offsetof(CBuildStatus, m_dwNumErrors) == 4, "number of errors at byte 4");
static_assert(offsetof(CBuildStatus, m_dwNumWarnings) == 8, "number of warnings at byte 8");

} // namespace kestrix
