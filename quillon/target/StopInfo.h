#pragma once

#include <cstdint>
#include <string>

namespace quillon::target {

enum class StopReason {
    None,             ///< never ran
    Reset,            ///< stopped after a reset
    Breakpoint,       ///< a breakpoint (or a bkpt instruction) stopped the core before its instruction
    StepDone,         ///< the requested instructions ran
    StopRequest,      ///< stop() from any thread
    RunUntilReached,  ///< one of the run's until-addresses is next
    Returned,         ///< the core reached the run's return address
    InstructionLimit, ///< the run's instruction limit is spent
    Fault,            ///< see FaultKind
};

enum class FaultKind {
    None,
    UnmappedRead,
    UnmappedWrite,
    UnmappedFetch,
    ReadDenied,           ///< read of an area without r
    WriteDenied,          ///< write to an area without w
    FetchDenied,          ///< fetch from an area without x
    UndefinedInstruction,
    InvalidState,         ///< a branch to an address without the Thumb bit
    Exception,            ///< another CPU exception (svc, an unaligned or coprocessor access, ...)
    Engine,               ///< the emulator failed
};

/// Why and where the core stopped.
struct StopInfo {
    StopReason reason = StopReason::None;
    /// Address of the next instruction; for a fault, of the faulting one.
    uint32_t pc = 0;
    /// The breakpoint or until-address reached, or the data address of a memory fault.
    uint32_t address = 0;
    FaultKind fault = FaultKind::None;
    /// The emulator's exception number of FaultKind::Exception.
    int exception = 0;
    /// What happened, in words: "write to 0x00000100 in area 'flash' without write access".
    std::string message;

    static const char* reasonName(StopReason reason);
};

} // namespace quillon::target
