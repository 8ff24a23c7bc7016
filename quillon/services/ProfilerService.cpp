#include "services/ProfilerService.h"

#include <algorithm>
#include <utility>

#include "services/DebugService.h"
#include "services/ServiceError.h"
#include "target/Hex.h"
#include "target/TargetError.h"

namespace quillon::services {

namespace {

ServiceError invalid(const std::string& message)
{
    return ServiceError(ServiceError::Kind::InvalidArgument, message);
}

ServiceError notFound(const std::string& message)
{
    return ServiceError(ServiceError::Kind::NotFound, message);
}

std::string quoted(const std::string& name)
{
    return "'" + name + "'";
}

} // namespace

ProfilerService::ProfilerService(target::Target& target, SymbolLookup symbols)
    : m_target(target), m_symbols(std::move(symbols)), m_recording(target)
{
}

ProfilerService::~ProfilerService()
{
    m_recording.end();
    try {
        detach();
        if (m_isAttached) {
            m_target.waitUntilStopped(std::chrono::seconds(10));
            m_target.removeObserver(&m_recording);
        }
    } catch (...) {
        // The owner stops the core before its services go.
    }
}

void ProfilerService::startConfiguration(TimeBase timeBase, std::optional<std::uint32_t> startAddress)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_recording.end();
    detach();
    m_areas.clear();
    m_isConfigured = true;
    m_timeBase = timeBase;
    m_startAddress = startAddress;
}

ProfilerArea ProfilerService::addFunction(const std::string& name, unsigned extraBits)
{
    const SymbolInfo function = symbol(DebugService::Functions, name, "function");
    ProfilerArea area;
    area.name = name;
    area.kind = ProfilerArea::Kind::Function;
    area.address = function.address & ~1u;
    area.size = function.size;
    area.extraBits = extraBits;
    return add(std::move(area));
}

ProfilerArea ProfilerService::addVariable(const std::string& name, unsigned extraBits)
{
    const SymbolInfo variable = symbol(DebugService::Variables, name, "variable");
    if (variable.size == 0 || variable.size > kCapabilities.maxDataBytes) {
        throw invalid("variable " + quoted(name) + " has " + std::to_string(variable.size) +
                      " bytes; a data area has 1 to 4");
    }
    checkMemory(name, variable.address, variable.size);
    ProfilerArea area;
    area.name = name;
    area.kind = ProfilerArea::Kind::Variable;
    area.address = variable.address;
    area.size = variable.size;
    area.extraBits = extraBits;
    return add(std::move(area));
}

ProfilerArea ProfilerService::addRegion(const std::string& name, std::uint32_t address, std::uint32_t size,
                                        unsigned extraBits)
{
    checkName(name);
    if (size == 0 || size > kCapabilities.maxDataBytes) {
        throw invalid("region " + quoted(name) + " of " + std::to_string(size) + " bytes; a data area has 1 to 4");
    }
    checkMemory(name, address, size);
    ProfilerArea area;
    area.name = name;
    area.kind = ProfilerArea::Kind::Region;
    area.address = address;
    area.size = size;
    area.extraBits = extraBits;
    return add(std::move(area));
}

ProfilerArea ProfilerService::addRoutine(const std::string& name, std::uint32_t address, std::uint32_t size,
                                         const std::vector<std::uint32_t>& exits, unsigned extraBits)
{
    checkName(name);
    if (size == 0) {
        throw invalid("routine " + quoted(name) + " has no code: its size is 0");
    }
    ProfilerArea area;
    area.name = name;
    area.kind = ProfilerArea::Kind::Routine;
    area.address = address & ~1u;
    area.size = size;
    area.extraBits = extraBits;
    for (std::uint32_t exit : exits) {
        if (!area.contains(exit & ~1u)) {
            throw invalid("exit " + target::hex32(exit) + " of routine " + quoted(name) + " is not in its code " +
                          target::hex32(area.address) + " to " + target::hex32(area.address + size - 1));
        }
        area.exits.push_back(exit & ~1u);
    }
    return add(std::move(area));
}

ProfilerArea ProfilerService::add(ProfilerArea area)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    requireConfiguration("an area is added");
    if (m_recording.isOn()) {
        throw ServiceError(ServiceError::Kind::Failed,
                           "the recording goes on: areas are added before it starts or after it stopped");
    }
    for (const ProfilerArea& other : m_areas) {
        if (other.name == area.name) {
            throw invalid("an area named " + quoted(area.name) + " exists already, with handle " +
                          std::to_string(other.handle));
        }
    }
    const auto sameKind = std::count_if(m_areas.begin(), m_areas.end(),
                                        [&](const ProfilerArea& other) { return other.isCode() == area.isCode(); });
    const std::uint32_t limit = area.isCode() ? kCapabilities.maxCodeAreas : kCapabilities.maxDataAreas;
    if (static_cast<std::uint32_t>(sameKind) >= limit) {
        throw invalid("the profiler measures at most " + std::to_string(limit) +
                      (area.isCode() ? " code areas" : " data areas"));
    }
    area.handle = static_cast<std::uint32_t>(m_areas.size() + 1);
    m_areas.push_back(area);
    return area;
}

void ProfilerService::start()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    requireConfiguration("the recording starts");
    if (m_areas.empty()) {
        throw ServiceError(ServiceError::Kind::Failed, "the configuration has no area to measure");
    }
    const bool watchesData = std::any_of(m_areas.begin(), m_areas.end(),
                                         [](const ProfilerArea& area) { return !area.isCode(); });
    try {
        m_target.addObserver(&m_recording, watchesData);
    } catch (const target::TargetError&) {
        throw ServiceError(ServiceError::Kind::Running,
                           "the target is running: the recording starts while the target is stopped");
    }
    m_isAttached = true;
    m_recording.begin(m_areas, m_startAddress);
}

bool ProfilerService::stop()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const bool wasOn = m_recording.end();
    detach();
    return wasOn;
}

// A running core keeps the recording as an observer, which ignores it, until the next chance to remove it.
void ProfilerService::detach()
{
    if (!m_isAttached) {
        return;
    }
    try {
        m_target.removeObserver(&m_recording);
        m_isAttached = false;
    } catch (const target::TargetError&) {
        // still running
    }
}

ProfilerService::Status ProfilerService::status() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    Status status;
    if (!m_isConfigured) {
        return status;
    }
    const bool isOn = m_recording.isOn();
    status.state = !isOn ? State::Idle : m_recording.isWaiting() ? State::Waiting : State::Active;
    status.isLoading = isOn && m_target.isRunning();
    status.hasOverrun = m_recording.hasOverrun();
    status.hasFailed = m_recording.hasFailed();
    status.recordedEvents = m_recording.recordedEvents();
    status.analyzedEvents = m_recording.analyzedEvents();
    return status;
}

ProfilerService::TimeBase ProfilerService::timeBase() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_timeBase;
}

std::vector<ProfilerService::Statistic> ProfilerService::statistics(const Selection& selection) const
{
    checkTask(selection);
    if (selection.handle) {
        area(*selection.handle);
    }
    const TimeBase base = timeBase();
    std::vector<Statistic> found;
    for (const ProfilerRecording::Statistic& statistic : m_recording.statistics()) {
        if ((selection.handle && *selection.handle != statistic.handle) ||
            (selection.value && *selection.value != statistic.value)) {
            continue;
        }
        const ProfilerTime& time = statistic.time;
        found.push_back(Statistic{statistic.handle, statistic.value, timeOf(time.total(), base, m_target.clockHz()),
                                  timeOf(time.max(), base, m_target.clockHz()),
                                  timeOf(time.min(), base, m_target.clockHz()), time.hits()});
    }
    return found;
}

std::vector<ProfilerService::Event> ProfilerService::history(const Selection& selection, std::size_t first,
                                                             std::size_t count) const
{
    checkTask(selection);
    if (selection.handle) {
        area(*selection.handle);
    }
    const TimeBase base = timeBase();
    std::vector<Event> found;
    for (const ProfilerRecording::Event& event :
         m_recording.history(ProfilerRecording::Filter{selection.handle, selection.value}, first, count)) {
        found.push_back(Event{event.handle, event.value,
                              static_cast<std::uint64_t>(timeOf(event.time, base, m_target.clockHz()))});
    }
    return found;
}

std::size_t ProfilerService::areaCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_areas.size();
}

ProfilerArea ProfilerService::area(std::uint32_t handle) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (handle == 0 || handle > m_areas.size()) {
        throw notFound("no profiler area with handle " + std::to_string(handle));
    }
    return m_areas[handle - 1];
}

ProfilerArea ProfilerService::area(const std::string& name) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const ProfilerArea& area : m_areas) {
        if (area.name == name) {
            return area;
        }
    }
    throw notFound("no profiler area named " + quoted(name));
}

ProfilerArea ProfilerService::areaAt(std::uint32_t address) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const ProfilerArea& area : m_areas) {
        if (area.address == address) {
            return area;
        }
    }
    for (const ProfilerArea& area : m_areas) {
        if (area.contains(address)) {
            return area;
        }
    }
    throw notFound("no profiler area at " + target::hex32(address));
}

std::int64_t ProfilerService::timeOf(std::uint64_t cycles, TimeBase timeBase, std::uint64_t clockHz)
{
    if (timeBase == TimeBase::Cycles || clockHz == 0) {
        return static_cast<std::int64_t>(cycles);
    }
    constexpr std::uint64_t nanosecondsPerSecond = 1000000000;
    return static_cast<std::int64_t>(cycles / clockHz * nanosecondsPerSecond +
                                     cycles % clockHz * nanosecondsPerSecond / clockHz);
}

void ProfilerService::requireConfiguration(const char* operation) const
{
    if (!m_isConfigured) {
        throw ServiceError(ServiceError::Kind::Failed,
                           std::string("no profiler configuration: start one before ") + operation);
    }
}

void ProfilerService::checkName(const std::string& name) const
{
    if (name.empty()) {
        throw invalid("an area needs a name");
    }
    if (name.size() > kMaxNameLength) {
        throw invalid("area name of " + std::to_string(name.size()) + " characters; at most " +
                      std::to_string(kMaxNameLength) + " are kept");
    }
}

void ProfilerService::checkMemory(const std::string& name, std::uint32_t address, std::uint32_t size) const
{
    std::uint8_t bytes[4];
    try {
        m_target.readMemory(address, bytes, size);
    } catch (const std::exception&) {
        throw invalid("no memory at " + target::hex32(address) + " for the " + std::to_string(size) +
                      " bytes of area " + quoted(name));
    }
}

SymbolInfo ProfilerService::symbol(std::uint32_t addressFlags, const std::string& name, const char* what) const
{
    checkName(name);
    std::optional<SymbolInfo> found = m_symbols ? m_symbols(addressFlags, name) : std::nullopt;
    if (!found) {
        throw notFound(std::string("no ") + what + " " + quoted(name) + " in the downloaded programs");
    }
    return *found;
}

void ProfilerService::checkTask(const Selection& selection)
{
    if (selection.task && *selection.task != 0) {
        throw ServiceError(ServiceError::Kind::NotAvailable,
                           "no task " + std::to_string(*selection.task) +
                               ": the target runs without an operating system, so task 0 is all of it");
    }
}

} // namespace quillon::services
