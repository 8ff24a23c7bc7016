#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "services/CallTracker.h"
#include "services/ProfilerArea.h"
#include "services/ProfilerTime.h"
#include "target/ExecutionObserver.h"
#include "target/Target.h"

namespace quillon::services {

/// One recording of the profiler, fed by the core as it runs: the calls of the code areas and the values the core
/// writes into the data areas, as statistics per area (per value for data) and as a history of events. Times are
/// cycles of the core since the recording began: at begin(), or where control first reaches the starting
/// address. A code area's call counts once it has returned; a data value counts at its write, and its period runs
/// until the next write of its area, the end of the recording, or (while the recording goes on) the latest
/// instruction.
///
/// Control is looked at where it matters only (entries, return addresses of calls in progress, the starting
/// address, and where a run starts), so that the core runs on at little cost elsewhere; a jump out of a call's
/// frame ends it at the next such place. Where control goes after an instruction that writes is taken after the
/// next instruction, with the stack pointer as it left it.
///
/// Threads: the callbacks come on the engine's thread; every other operation may come from any thread.
class ProfilerRecording final : public target::ExecutionObserver {
public:
    /// Most events the history holds, and distinct values of one data area the statistics hold; beyond them
    /// the recording overruns: it counts what it still can and says so.
    static constexpr std::size_t kMaxHistory = std::size_t{1} << 20;
    static constexpr std::size_t kMaxValues = 4096;
    /// History value of a code area's entry; its return has 0.
    static constexpr std::uint32_t kEntryValue = 0x80000000u;

    /// Statistics of a code area (value 0) or of one value of a data area; times in cycles.
    struct Statistic {
        std::uint32_t handle = 0;
        std::uint32_t value = 0;
        ProfilerTime time;
    };
    /// One event: a call's entry or return, or a write; time in cycles.
    struct Event {
        std::uint32_t handle = 0;
        std::uint32_t value = 0;
        std::uint64_t time = 0;
    };

    explicit ProfilerRecording(target::Target& target) : m_target(target) {}

    /// Starts a recording of `areas` (which stay as they are until the next begin), now or at `startAddress`;
    /// drops what an earlier one recorded.
    void begin(const std::vector<ProfilerArea>& areas, std::optional<std::uint32_t> startAddress);
    /// Ends the recording: open data periods end at the latest instruction, calls in progress do not count.
    /// False if none was going on.
    bool end();

    bool isOn() const;
    /// On, but the starting address was not reached yet.
    bool isWaiting() const;
    bool hasOverrun() const;
    /// A callback could not follow the core; the calls it missed are missing.
    bool hasFailed() const;
    std::size_t recordedEvents() const;
    std::size_t analyzedEvents() const;

    /// Code areas with a call, then each value of each data area, by handle and value.
    std::vector<Statistic> statistics() const;
    /// Which events a history read keeps: those of one area, and of one value.
    struct Filter {
        std::optional<std::uint32_t> handle;
        std::optional<std::uint32_t> value;
        bool keeps(const Event& event) const;
    };
    /// At most `count` of the events that `filter` keeps, from the `first` of them on.
    std::vector<Event> history(const Filter& filter, std::size_t first, std::size_t count) const;

    void onRunStart(std::uint64_t cycle) override;
    void onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t cycle) override;
    void onWrite(std::uint32_t address, std::uint32_t size, std::uint64_t value, std::uint64_t cycle) override;

private:
    /// The value a data area holds now, since when.
    struct Held {
        std::uint32_t value = 0;
        std::uint64_t since = 0;
    };

    std::uint64_t timeAt(std::uint64_t cycle) const;
    std::uint64_t now() const { return timeAt(m_lastCycle.load(std::memory_order_relaxed)); }
    bool matters(std::uint32_t pc) const;
    bool touchesData(std::uint32_t address, std::uint32_t size) const;
    void arrive(std::uint32_t pc, std::uint32_t sp, std::uint64_t now, bool isJump);
    void ended(const std::vector<CallTracker::Call>& calls);
    void write(std::size_t area, std::uint32_t value, std::uint64_t now);
    std::uint32_t valueAfterWrite(const ProfilerArea& area, std::uint32_t address, std::uint32_t size,
                                  std::uint64_t value) const;
    void addEvent(std::uint32_t handle, std::uint32_t value, std::uint64_t time);
    std::uint32_t readRegister(target::Register reg);

    target::Target& m_target;
    mutable std::mutex m_mutex;
    std::atomic<bool> m_isOn{false};
    std::optional<std::uint32_t> m_startAddress; ///< set while waiting for it
    std::vector<ProfilerArea> m_areas;
    std::multimap<std::uint32_t, std::size_t> m_dataAreas; ///< index into m_areas by first byte
    CallTracker m_calls;
    std::vector<ProfilerTime> m_codeTimes;                           ///< by area index
    std::vector<std::map<std::uint32_t, ProfilerTime>> m_valueTimes; ///< by area index
    std::vector<std::optional<Held>> m_held;                         ///< by area index
    std::vector<Event> m_history;
    std::size_t m_analyzed = 0;
    bool m_overrun = false;
    bool m_failed = false; ///< a register could not be read: calls may be missing

    // The clock: cycles since the reset, kept rising over resets, and where the recording's time 0 is.
    std::atomic<std::uint64_t> m_lastCycle{0};
    std::uint64_t m_resetOffset = 0;
    std::uint64_t m_zero = 0;

    // Where control went, as far as the engine's thread knows it.
    std::optional<std::uint32_t> m_lastNext; ///< after the latest instruction
    bool m_nextUnknown = false;              ///< the latest instruction wrote: it is the next one's address
};

} // namespace quillon::services
