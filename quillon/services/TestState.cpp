#include "services/TestState.h"

namespace quillon::services {

const char* testStateName(TestState state)
{
    switch (state) {
    case TestState::Offline:
        return "stateOffline";
    case TestState::Initialized:
        return "stateInitialized";
    case TestState::Running:
        return "stateRunning";
    case TestState::Ended:
        return "stateEnded";
    case TestState::Stub:
        return "stateStub";
    case TestState::UnexpectedStop:
        return "stateUnexpectedStop";
    case TestState::Aborted:
        return "stateAborted";
    case TestState::Paused:
        return "statePaused";
    }
    return "stateUnknown";
}

} // namespace quillon::services
