#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// Commands, status kinds, states and error classes of OrbelTest.
struct OrbelTestFlags {
    /// Command of Control.
    enum EControl : DWORD {
        /// Handle 0: every test of the session.
        tcClearAll = 0,
        tcInit = 1,
        tcClean = 2,
        tcRun = 3,
        tcAbort = 4,
        tcPause = 5
    };

    /// Kind of GetStatus.
    enum EStatusKind : DWORD {
        /// Handle 0: the handle of the stub the target stopped on.
        tskActiveStub = 2,
        /// The ETestState of the test handle.
        tskTestState = 3
    };

    enum ETestState : DWORD {
        stateOffline = 1,
        stateInitialized = 2,
        stateRunning = 3,
        /// The function under test returned.
        stateEnded = 4,
        /// Stopped on a stubbed function.
        stateStub = 5,
        stateUnexpectedStop = 6,
        stateAborted = 7,
        statePaused = 8
    };

    enum EStubState : DWORD {
        stateStubNotActive = 1,
        stateStubActive = 2
    };

    /// Error class of GetLastError; any other value is an I/O failure.
    enum EErrorClass : DWORD {
        tecNone = 0,
        tecIllegalState = 1,
        tecIllegalArgument = 2,
        /// The class this library gives an I/O failure.
        tecIO = 3
    };
};

} // namespace kestrix
