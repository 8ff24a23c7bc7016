#pragma once

namespace quillon::services {

/// The state of a test, numbered as clients read it.
enum class TestState {
    Offline = 1,          ///< declared; no frame in target memory
    Initialized = 2,      ///< the frame is placed: locals, parameters and return value can be read and written
    Running = 3,          ///< the target runs the function under test
    Ended = 4,            ///< the function under test returned
    Stub = 5,             ///< stopped at the entry of a stubbed function
    UnexpectedStop = 6,   ///< a fault, the instruction limit or another stop ended the run
    Aborted = 7,
    Paused = 8,
};

/// "stateRunning", ...
const char* testStateName(TestState state);

} // namespace quillon::services
