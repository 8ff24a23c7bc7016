#include "target/StopInfo.h"

namespace quillon::target {

const char* StopInfo::reasonName(StopReason reason)
{
    switch (reason) {
    case StopReason::None:
        return "none";
    case StopReason::Reset:
        return "reset";
    case StopReason::Breakpoint:
        return "breakpoint";
    case StopReason::StepDone:
        return "step done";
    case StopReason::StopRequest:
        return "stop request";
    case StopReason::RunUntilReached:
        return "run until reached";
    case StopReason::Returned:
        return "returned";
    case StopReason::InstructionLimit:
        return "instruction limit";
    case StopReason::Fault:
        return "fault";
    }
    return "unknown";
}

} // namespace quillon::target
