#pragma once

#include <cstddef>
#include <cstdint>

namespace quillon::target {

/// Watches what the core executes and writes while a run goes on: coverage, profiler and trace recorders.
/// Callbacks come on the engine's thread, in execution order, and must not throw. They may read registers and
/// memory through the Target (the engine is theirs during the callback) but not run, stop or change hooks.
class ExecutionObserver {
public:
    /// An instruction that ran, as batches report it.
    struct Executed {
        std::uint32_t address;
        std::uint32_t size;
    };

    virtual ~ExecutionObserver() = default;

    /// A run or step is about to start from the registers as they are now, `cycle` instructions after the reset:
    /// whatever the debugger changed while the core stood is in place.
    virtual void onRunStart(std::uint64_t cycle) { (void)cycle; }
    /// The instruction of `size` bytes at `address` ran; `cycle` is its number in the target's cycle count (the
    /// first instruction after a reset is cycle 1). The registers are those after it, and Target::nextAddress the
    /// instruction that comes next, unless the instruction still runs because its write is reported next: then
    /// nextAddress is empty. Observers that take batches hear of instructions in onInstructions instead.
    virtual void onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t cycle) = 0;
    /// Whether the observer hears of executed instructions in batches (onInstructions) in place of one call each:
    /// far cheaper for an observer that needs neither the registers after an instruction nor its order with
    /// respect to writes. Asked when it is added.
    virtual bool takesBatches() const { return false; }
    /// Only for observers that take batches: `count` instructions (at least one) that ran in this order, the first
    /// at `cycle`, the others at the cycles after it. Instructions that a stop came before are never in a batch. Comes
    /// on the engine's thread when the target's batch is full and at the end of each slice of a run.
    virtual void onInstructions(const Executed* instructions, std::size_t count, std::uint64_t cycle)
    {
        (void)instructions;
        (void)count;
        (void)cycle;
    }
    /// After the instruction at `cycle` wrote `size` bytes (1, 2, 4 or 8) of `value` (little-endian, zero-extended)
    /// at `address`; only for observers added with writes watched.
    virtual void onWrite(std::uint32_t address, std::uint32_t size, std::uint64_t value, std::uint64_t cycle)
    {
        (void)address;
        (void)size;
        (void)value;
        (void)cycle;
    }
};

} // namespace quillon::target
