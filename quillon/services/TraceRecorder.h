#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "target/ExecutionObserver.h"
#include "target/Target.h"

namespace quillon::services {

/// One entry of a trace: a function entered, an instruction executed, or a marker set by the user.
struct TraceEvent {
    enum class Kind : std::uint8_t { Entry, Instruction, Marker };
    static constexpr std::uint32_t kNoFunction = 0xFFFFFFFFu;

    Kind kind = Kind::Entry;
    /// The instruction's number in the target's cycle count (for a marker: the next instruction's).
    std::uint64_t cycle = 0;
    std::uint32_t address = 0;
    /// Index into the recorder's function names; kNoFunction outside every function.
    std::uint32_t function = kNoFunction;
    /// A marker's value; 0 otherwise.
    std::uint32_t value = 0;
};

/// A function the trace knows: its name, entry and code [low, high).
struct TraceFunction {
    std::string name;
    std::uint32_t entry = 0;
    std::uint32_t low = 0;
    std::uint32_t high = 0;
};

/// Records the entries of functions (and, where asked, every instruction) from executed instructions. Control that
/// reaches a function's entry enters it when it comes from outside the function or from a call (BL, BLX) inside
/// it, as in recursion; a loop back to the entry from inside is no entry. A start function holds the recording
/// back until its first entry. At most kCapacity events are kept; then the recording is full and records no more.
///
/// Callbacks come on the engine's thread; `setRecording` may come from any thread; the rest only while the target
/// is stopped.
class TraceRecorder final : public target::ExecutionObserver {
public:
    static constexpr std::size_t kCapacity = 1000000;

    explicit TraceRecorder(const target::Target& target);

    /// Before recording: the functions and what the trigger asks. `startEntry` holds the recording back until
    /// that entry; nothing begins at once.
    void prepare(std::vector<TraceFunction> functions, bool instructions, std::optional<std::uint32_t> startEntry);
    void setRecording(bool on) { m_recording.store(on, std::memory_order_relaxed); }
    void clear();
    /// A marker before the next instruction of the stopped target.
    void addMarker(std::uint64_t cycle, std::uint32_t address, std::uint32_t value);
    void clearMarkers();
    /// Replaces what was recorded, as a saved document had it.
    void restore(std::vector<std::string> names, std::vector<TraceEvent> events, bool full);

    const std::vector<TraceEvent>& events() const { return m_events; }
    const std::vector<std::string>& names() const { return m_names; }
    bool isFull() const { return m_full; }

    void onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t cycle) override;

private:
    bool isCall(std::uint32_t address, std::uint32_t size) const;
    static std::size_t filterBit(std::uint32_t address) { return (address >> 1) & 0xFFFF; }
    bool mayBeEntry(std::uint32_t address) const
    {
        const std::size_t bit = filterBit(address);
        return (m_entryFilter[bit >> 6] >> (bit & 63)) & 1u;
    }
    std::uint32_t functionAt(std::uint32_t address);
    std::uint32_t nameIndex(std::size_t function);
    void push(const TraceEvent& event);

    const target::Target& m_target;
    std::atomic<bool> m_recording{false};
    std::vector<TraceFunction> m_functions;               ///< by low address
    std::unordered_map<std::uint32_t, std::size_t> m_entries; ///< entry -> function
    /// One bit for each halfword address modulo 2^17: set where some entry may be, so that most instructions
    /// need no lookup of m_entries.
    std::vector<std::uint64_t> m_entryFilter;
    std::vector<std::uint32_t> m_nameOf;                  ///< function -> index into m_names, or kNoFunction
    bool m_instructions = false;
    std::optional<std::uint32_t> m_waitFor;
    bool m_hasPrevious = false;
    std::uint32_t m_previous = 0;
    std::uint32_t m_previousSize = 0;
    std::vector<std::string> m_names;
    std::unordered_map<std::string, std::uint32_t> m_nameIndex;
    std::vector<TraceEvent> m_events;
    bool m_full = false;
};

} // namespace quillon::services
