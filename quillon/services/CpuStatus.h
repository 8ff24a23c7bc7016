#pragma once

#include <cstdint>
#include <string>

#include "target/StopInfo.h"

namespace quillon::services {

/// Why the core stands still, as the debugger reports it.
enum class StopCause {
    None,             ///< never ran since the target was made
    Reset,            ///< reset or download
    Breakpoint,       ///< a user breakpoint or a bkpt instruction
    Step,             ///< an instruction or source-line step ended
    StopRequest,      ///< stop() ended the run or step
    UntilReached,     ///< a run until an address, a function, a line or the return reached it
    InstructionLimit, ///< a run with an instruction limit spent it
    Fault,            ///< the core faulted; see fault and message
};

/// A snapshot of the core's state.
struct CpuStatus {
    bool running = false;
    /// Meaningful when stopped.
    StopCause cause = StopCause::None;
    target::FaultKind fault = target::FaultKind::None;
    /// Next instruction; of a fault, the faulting one.
    std::uint32_t pc = 0;
    /// The breakpoint or until-address reached, or the data address of a memory fault.
    std::uint32_t address = 0;
    std::uint64_t cycles = 0;
    /// Simulated time: cycles over the clock.
    double seconds = 0;
    /// What happened, in words: "breakpoint at 0x00000124", "write to 0x00001000 in area 'flash' without ...".
    std::string message;
};

} // namespace quillon::services
