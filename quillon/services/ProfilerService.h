#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "services/ProfilerArea.h"
#include "services/ProfilerRecording.h"
#include "services/SymbolIndex.h"
#include "target/Target.h"

namespace quillon::services {

/// Quillon's profiler on the simulated core. A configuration (startConfiguration) names the areas to measure and
/// the time base; start() begins a recording of them, now or when control first reaches a starting address, and
/// stop() ends it. Statistics and the history can be read while it goes on and after it; a new start or
/// configuration drops them.
///
/// What is measured, in simulated cycles of the core (identical from run to run), given in cycles or, with the
/// time base Nanoseconds, as cycles / the core's clock:
/// - a function or routine: each call that returned is a hit; its time runs from the arrival at its entry to the
///   return to its caller, callees included (a tail call it ends with counts as its own). Min and max are those
///   of single calls. A recursive call is a hit with its own time, but the total counts the outermost call only,
///   so it is the time during which at least one call was in progress. A stub of the test service, which returns
///   at once, is a hit of time 0.
/// - a variable or region (1 to 4 bytes): every write of the core into it is a hit of the value the area holds
///   after it; the value's period lasts until the next write of the area (or the end of the recording).
///   Statistics come per value.
/// - the history: a code area's entry (value with bit 31 set) and return (value 0), and each write with its
///   value, with the time since the recording began.
/// The target runs without an operating system: task 0 is all of it.
///
/// Every failure is a ServiceError: NotFound for an unknown symbol or area, InvalidArgument for a value that
/// cannot be used, NotAvailable for what the simulated target has not, Failed for an operation out of order.
/// All operations may be called from any thread.
class ProfilerService {
public:
    enum class TimeBase { Cycles, Nanoseconds };
    enum class State { Unconfigured, Idle, Waiting, Active };

    /// DebugService::findSymbol: a function or a variable by its address flags and name.
    using SymbolLookup = std::function<std::optional<SymbolInfo>(std::uint32_t addressFlags, const std::string&)>;

    struct Capabilities {
        std::uint32_t maxCodeAreas;
        std::uint32_t maxDataAreas;
        std::uint32_t maxDataBytes;
    };
    struct Status {
        State state = State::Unconfigured;
        /// The core runs while recording: the figures still change.
        bool isLoading = false;
        bool hasOverrun = false;
        bool hasFailed = false;
        std::size_t recordedEvents = 0;
        std::size_t analyzedEvents = 0;
    };
    /// Times in the configured time base.
    struct Statistic {
        std::uint32_t handle = 0;
        std::uint32_t value = 0;
        std::int64_t total = 0;
        std::int64_t max = 0;
        std::int64_t min = 0;
        std::uint32_t hits = 0;
    };
    struct Event {
        std::uint32_t handle = 0;
        std::uint32_t value = 0;
        std::uint64_t time = 0;
    };
    /// What a read selects; nothing given selects all.
    struct Selection {
        std::optional<std::uint32_t> handle;
        std::optional<std::uint32_t> task;
        std::optional<std::uint32_t> value;
    };

    static constexpr Capabilities kCapabilities{1024, 1024, 4};
    static constexpr std::size_t kMaxNameLength = 255;

    ProfilerService(target::Target& target, SymbolLookup symbols);
    /// Leaves the core without the recording.
    ~ProfilerService();
    ProfilerService(const ProfilerService&) = delete;
    ProfilerService& operator=(const ProfilerService&) = delete;

    /// A fresh configuration without areas; ends a recording that goes on. The recording starts at
    /// `startAddress` when given.
    void startConfiguration(TimeBase timeBase, std::optional<std::uint32_t> startAddress = std::nullopt);
    ProfilerArea addFunction(const std::string& name, unsigned extraBits = 0);
    ProfilerArea addVariable(const std::string& name, unsigned extraBits = 0);
    /// `size` bytes from `address`.
    ProfilerArea addRegion(const std::string& name, std::uint32_t address, std::uint32_t size, unsigned extraBits = 0);
    /// Code of `size` bytes with its entry at `address`; its calls end at a return or once one of `exits` ran.
    ProfilerArea addRoutine(const std::string& name, std::uint32_t address, std::uint32_t size,
                            const std::vector<std::uint32_t>& exits, unsigned extraBits = 0);

    /// Only while the core is stopped.
    void start();
    /// False when no recording was going on.
    bool stop();

    Status status() const;
    TimeBase timeBase() const;
    std::vector<Statistic> statistics(const Selection& selection) const;
    /// At most `count` of the selected events, from the `first` of them on.
    std::vector<Event> history(const Selection& selection, std::size_t first, std::size_t count) const;

    std::size_t areaCount() const;
    ProfilerArea area(std::uint32_t handle) const;
    ProfilerArea area(const std::string& name) const;
    /// The area that starts at `address`, else one that holds it.
    ProfilerArea areaAt(std::uint32_t address) const;

    /// Converts cycles to the time base.
    static std::int64_t timeOf(std::uint64_t cycles, TimeBase timeBase, std::uint64_t clockHz);

private:
    ProfilerArea add(ProfilerArea area);
    void requireConfiguration(const char* operation) const;
    void checkName(const std::string& name) const;
    void checkMemory(const std::string& name, std::uint32_t address, std::uint32_t size) const;
    SymbolInfo symbol(std::uint32_t addressFlags, const std::string& name, const char* what) const;
    static void checkTask(const Selection& selection);
    void detach();

    target::Target& m_target;
    SymbolLookup m_symbols;
    mutable std::mutex m_mutex;
    bool m_isConfigured = false;
    TimeBase m_timeBase = TimeBase::Cycles;
    std::optional<std::uint32_t> m_startAddress;
    std::vector<ProfilerArea> m_areas;
    ProfilerRecording m_recording;
    bool m_isAttached = false; ///< the recording watches the core
};

} // namespace quillon::services
