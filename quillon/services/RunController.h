#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "services/CpuStatus.h"
#include "services/SymbolIndex.h"
#include "target/Target.h"

namespace quillon::services {

/// Run control of the debugger over the target: runs, instruction and source-line steps, step over calls, run
/// until an address or the return of the current function, stop and reset, and the status with its stop cause.
///
/// Runs return at once and go on on the target's run thread. Steps return when done; a step over a call that
/// never returns ends only by stop(). stop() and status() may be called from any thread and never block; the
/// other operations are called from one thread at a time.
class RunController {
public:
    /// Instructions a source-line step executes at most before it ends where it is.
    static constexpr unsigned maxLineStepInstructions = 1000000;

    RunController(target::Target& target, const SymbolIndex& symbols) : m_target(target), m_symbols(symbols) {}

    void run();
    void runUntil(std::uint32_t address);
    /// Until the current function returns to its caller (by the call-frame information, else by LR).
    void runUntilReturn();
    void stop();
    /// Stops a run first.
    void reset();
    /// Sets the pc of the stopped core.
    void setExecutionPoint(std::uint32_t address);

    void stepInstruction();
    /// A call instruction runs until its callee returns; others step.
    void stepOverInstruction();
    /// To the start of the next source line, into called functions with line information (after their
    /// prologue); code without line information runs until it returns. Without line information at the pc an
    /// instruction step.
    void stepLine();
    /// As stepLine, but calls run until they return.
    void stepOverLine();

    /// Forgets the cause of the last step, after a download reset the target.
    void clearCause();

    CpuStatus status() const;
    /// Waits for the end of a run; false after the timeout.
    bool waitUntilStopped(std::chrono::milliseconds timeout) const;
    /// A ServiceError Running when the core runs.
    void requireStopped(const std::string& operation) const;

private:
    enum class Command { None, Run, RunUntil, Step };

    void begin(Command command);
    void finish(std::optional<StopCause> cause, std::string message = {});
    bool stepOnce();
    bool runTo(std::uint32_t address, std::uint32_t minimumSp);
    void lineStep(bool over);
    std::optional<unsigned> callLength(std::uint32_t pc) const;
    std::uint32_t sp() const { return m_target.readRegister(target::Register::SP); }
    static bool continues(target::StopReason reason);
    StopCause causeOf(const target::StopInfo& info) const;

    target::Target& m_target;
    const SymbolIndex& m_symbols;

    std::atomic<bool> m_busy{false};          ///< a step of several runs is going on
    std::atomic<bool> m_stopRequested{false}; ///< stop() during such a step
    mutable std::mutex m_mutex;               ///< guards the fields below
    Command m_command = Command::None;
    std::optional<StopCause> m_cause; ///< the cause of the last step when the target's own does not tell it
    std::string m_message;
};

} // namespace quillon::services
