#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <vector>

#include "target/Breakpoint.h"
#include "target/CpuModel.h"
#include "target/ExecutionObserver.h"
#include "target/MemoryMap.h"
#include "target/RegisterTable.h"
#include "target/RunOptions.h"
#include "target/RunThread.h"
#include "target/StopInfo.h"
#include "target/TargetConfig.h"

namespace quillon::target {

class Engine;
struct TargetHooks;

/// The simulated Cortex-M core: memory, registers, reset, breakpoints and run control on one Unicorn engine.
///
/// Threads: a run starts on the caller's thread for a short host-time budget and, if the core is still running
/// then, goes on on the target's run thread. stop(), the status queries and memory reads work from any thread and
/// never wait for the engine. Register access, memory writes, breakpoints and reset need a stopped target
/// (a TargetError of kind Running otherwise); a breakpoint condition may read registers and memory while it runs.
///
/// Cycles: one per instruction the engine executes, counted by a code hook on every instruction (Unicorn's own
/// instruction budget is such a hook as well), so that every stop has an exact, repeatable count.
class Target {
public:
    /// A stopped core of the given model with its memory mapped and zeroed; call reset() once code is loaded.
    explicit Target(const TargetConfig& config);
    /// Stops a run and waits for it.
    ~Target();
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    const CpuModel& cpu() const { return m_cpu; }
    uint64_t clockHz() const { return m_clockHz; }
    const MemoryMap& memory() const { return m_memory; }

    // Memory, by the debugger: checked against the areas, not against their access rights.
    void readMemory(uint32_t address, void* out, size_t size) const;
    std::vector<uint8_t> readMemory(uint32_t address, size_t size) const;
    uint32_t readWord(uint32_t address) const;
    void writeMemory(uint32_t address, const void* data, size_t size);
    void writeMemory(uint32_t address, const std::vector<uint8_t>& bytes);
    MemoryMap::Snapshot snapshot() const;
    void restore(const MemoryMap::Snapshot& snapshot);

    // Registers; an unknown name is a TargetError of kind InvalidArgument.
    uint32_t readRegister(Register reg) const;
    uint32_t readRegister(std::string_view name) const;
    void writeRegister(Register reg, uint32_t value);
    void writeRegister(std::string_view name, uint32_t value);

    /// As the core's reset: SP (MSP) from word 0 and PC from word 1 of the vector table at 0, LR 0xFFFFFFFF,
    /// xPSR with the Thumb bit, other registers 0; cycles 0; stop reason Reset. Memory keeps its contents.
    void reset();

    // Breakpoints, one per address (bit 0 ignored). Setting one again replaces it and its hit count. A run stops at
    // a breakpoint at its start address too, unless it resumes from a stop at that breakpoint; a step passes over it.
    void setBreakpoint(uint32_t address, BreakpointOptions options = {});
    bool removeBreakpoint(uint32_t address);
    void removeAllBreakpoints();
    bool enableBreakpoint(uint32_t address, bool enabled);
    std::optional<Breakpoint> breakpoint(uint32_t address) const;
    std::vector<Breakpoint> breakpoints() const;

    /// The address that ends a call: while set, reaching it stops any run, step or run-until as Returned. An
    /// address no code has (it may be unmapped, but not 0xFFFFFFxx); bit 0 is ignored. The caller puts it into LR.
    void setReturnAddress(std::optional<uint32_t> address);
    std::optional<uint32_t> returnAddress() const;

    // Run control. A TargetError of kind Running if a run is going on.
    void run(const RunOptions& options = {});
    /// Executes `instructions` instructions (stop reason StepDone) unless something stops the core earlier.
    void step(uint64_t instructions = 1);
    /// Any thread; does nothing on a stopped target.
    void stop();
    bool waitUntilStopped(std::chrono::milliseconds timeout) const;
    void waitUntilStopped() const;
    /// run() and wait for the stop.
    StopInfo runToStop(const RunOptions& options = {});

    /// Puts back a stop that a run made by the debugger itself (a call of a target function) replaced:
    /// the stop information and, for a breakpoint stop, that resuming passes over that breakpoint.
    void restoreStop(const StopInfo& info);

    // Status; never blocks.
    bool isRunning() const { return m_running.load(); }
    StopInfo stopInfo() const;
    /// The next instruction's address; while running, as of the last slice of the run, but in a breakpoint
    /// condition (on the engine's thread) the live one.
    uint32_t pc() const { return onEngineThread() ? readRegister(Register::PC) & ~1u : m_pc.load(); }
    uint64_t cycles() const { return m_cycles.load(std::memory_order_relaxed); }
    double simulatedSeconds() const;

    /// Adds an observer of executed instructions (one by one, or in batches if it takes them) and, with
    /// `watchWrites`, of memory writes; not owned, it must stay until removed. Only while the target is stopped;
    /// adding one twice changes nothing.
    void addObserver(ExecutionObserver* observer, bool watchWrites = false);
    void removeObserver(ExecutionObserver* observer);

    /// In an observer's onInstruction: the address of the instruction that comes next, as the pc says after the
    /// reported one; nothing while that one still runs (its write is reported next) and outside the callback.
    std::optional<uint32_t> nextAddress() const { return m_nextAddress; }

    /// Host time a run spends on the caller's thread before the run thread takes over (default 5 ms).
    void setHostBudget(std::chrono::microseconds budget) { m_budget.store(budget.count()); }

private:
    friend struct TargetHooks;

    struct RunPlan {
        std::vector<uint32_t> until;
        uint64_t limit = 0;
        bool step = false;
    };

    /// The run in progress; touched only by the thread that holds the engine.
    struct Run {
        uint64_t startCycles = 0;
        uint32_t startPc = 0;
        bool passBreakpointAtStart = false;
        uint64_t limitEnd = 0; ///< cycle count that ends the run; 0: none
        bool step = false;
        std::vector<size_t> untilHooks;
    };

    /// What the hooks saw during one slice of a run.
    struct HookStop {
        bool requested = false; ///< a hook stopped the engine before the instruction at `address`
        uint32_t address = 0;
        std::optional<uint32_t> breakpoint;
        std::optional<uint32_t> untilReached;
        std::string conditionError;
        int exception = -1;         ///< the emulator's exception number
        uint64_t memoryAddress = 0; ///< of a failed access
    };

    using Clock = std::chrono::steady_clock;

    template <class F> auto withEngine(F&& f) const;
    template <class F> auto withStoppedEngine(F&& f);
    bool onEngineThread() const { return m_engineThread.load() == std::this_thread::get_id(); }

    void start(const RunPlan& plan);
    void prepareRun(const RunPlan& plan);
    bool execute(Clock::time_point deadline, uint64_t slice);
    std::optional<StopInfo> runSlice(uint64_t slice);
    std::optional<StopInfo> classify(int err, uint32_t pc);
    StopInfo faultStop(int err, uint32_t pc) const;
    StopInfo exceptionStop(uint32_t pc);
    void finishRun(const StopInfo& info);
    void stopBefore(uint32_t address);
    void dropTranslationsOfCode(uint64_t begin, uint64_t end);
    void updateWriteHook();
    void flushObserved(std::optional<uint32_t> next);
    /// Reports the first `count` instructions of the batch to its observers and empties it.
    void flushBatch(size_t count);
    void tellRunStart();

    CpuModel m_cpu;
    uint64_t m_clockHz;
    MemoryMap m_memory;
    std::unique_ptr<Engine> m_engine;

    mutable std::mutex m_engineMutex;
    std::atomic<std::thread::id> m_engineThread{};

    mutable std::mutex m_statusMutex;
    mutable std::condition_variable m_stoppedSignal;
    StopInfo m_stopInfo;
    std::atomic<bool> m_running{false};
    std::atomic<uint32_t> m_pc{0};

    std::atomic<uint64_t> m_cycles{0};
    std::atomic<uint64_t> m_limit{0}; ///< the counting hook stops the engine beyond this cycle count
    std::atomic<bool> m_stopRequested{false};
    std::atomic<int64_t> m_budget{5000};

    struct BreakpointEntry {
        Breakpoint breakpoint;
        size_t hook;
    };
    std::map<uint32_t, BreakpointEntry> m_breakpoints;
    std::vector<ExecutionObserver*> m_observers;
    std::vector<ExecutionObserver*> m_writeObservers;
    std::optional<size_t> m_writeHook;
    std::vector<ExecutionObserver*> m_batchObservers; ///< those that take batches; not in m_observers
    bool m_isBatching = false; ///< there are batch observers
    /// Instructions counted since the last batch went out; the last may still be stopped before.
    std::array<ExecutionObserver::Executed, 512> m_batch{};
    size_t m_batchSize = 0;
    uint64_t m_batchCycle = 0; ///< of the batch's first instruction
    /// The latest instruction, reported to the observers once it is known to have run.
    struct Observed {
        uint32_t address = 0;
        uint32_t size = 0;
        uint64_t cycle = 0;
        bool pending = false;
    };
    Observed m_observed;
    std::optional<uint32_t> m_nextAddress; ///< while observers hear of an instruction
    std::optional<uint32_t> m_returnAddress;
    std::optional<uint32_t> m_stoppedAtBreakpoint; ///< where the last run stopped by a breakpoint hook
    Run m_run;
    HookStop m_hookStop;

    RunThread m_runThread; // last: joined before the members it uses go
};

} // namespace quillon::target
