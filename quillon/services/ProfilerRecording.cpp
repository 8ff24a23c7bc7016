#include "services/ProfilerRecording.h"

#include <algorithm>

namespace quillon::services {

bool ProfilerRecording::Filter::keeps(const Event& event) const
{
    return (!handle || *handle == event.handle) && (!value || *value == event.value);
}

void ProfilerRecording::begin(const std::vector<ProfilerArea>& areas, std::optional<std::uint32_t> startAddress)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_areas = areas;
    m_calls = CallTracker();
    m_dataAreas.clear();
    for (std::size_t i = 0; i < m_areas.size(); ++i) {
        const ProfilerArea& area = m_areas[i];
        if (!area.isCode()) {
            m_dataAreas.emplace(area.address, i);
            continue;
        }
        m_calls.watchEntry(area.address, static_cast<std::uint32_t>(i));
        for (std::uint32_t exit : area.exits) {
            m_calls.watchExit(exit, static_cast<std::uint32_t>(i));
        }
    }
    m_codeTimes.assign(m_areas.size(), ProfilerTime());
    m_valueTimes.assign(m_areas.size(), {});
    m_held.assign(m_areas.size(), std::nullopt);
    m_history.clear();
    m_analyzed = 0;
    m_overrun = false;
    m_failed = false;
    m_lastCycle.store(m_target.cycles());
    m_resetOffset = 0;
    m_zero = m_lastCycle.load();
    m_lastNext.reset();
    m_nextUnknown = false;
    m_startAddress = startAddress;
    if (m_startAddress) {
        *m_startAddress &= ~1u;
    }
    m_isOn.store(true);
}

// The engine's thread may still look at the calls and the starting address: they stay until the next begin().
bool ProfilerRecording::end()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isOn.load()) {
        return false;
    }
    m_isOn.store(false);
    const std::uint64_t endTime = now();
    for (std::size_t i = 0; i < m_held.size(); ++i) {
        if (m_held[i]) {
            m_valueTimes[i][m_held[i]->value].addPeriod(endTime - m_held[i]->since);
            m_held[i].reset();
        }
    }
    return true;
}

bool ProfilerRecording::isOn() const
{
    return m_isOn.load();
}

bool ProfilerRecording::isWaiting() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_isOn.load() && m_startAddress.has_value();
}

bool ProfilerRecording::hasOverrun() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_overrun;
}

bool ProfilerRecording::hasFailed() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_failed;
}

std::size_t ProfilerRecording::recordedEvents() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_history.size();
}

std::size_t ProfilerRecording::analyzedEvents() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_analyzed;
}

std::vector<ProfilerRecording::Statistic> ProfilerRecording::statistics() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const std::uint64_t nowTime = now();
    std::vector<Statistic> found;
    for (std::size_t i = 0; i < m_areas.size(); ++i) {
        const std::uint32_t handle = m_areas[i].handle;
        if (m_areas[i].isCode()) {
            if (m_codeTimes[i].hits() > 0) {
                found.push_back(Statistic{handle, 0, m_codeTimes[i]});
            }
            continue;
        }
        for (const auto& [value, time] : m_valueTimes[i]) {
            Statistic statistic{handle, value, time};
            if (m_held[i] && m_held[i]->value == value) {
                statistic.time.addPeriod(nowTime - m_held[i]->since);
            }
            found.push_back(statistic);
        }
    }
    return found;
}

std::vector<ProfilerRecording::Event> ProfilerRecording::history(const Filter& filter, std::size_t first,
                                                                 std::size_t count) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<Event> found;
    if (!filter.handle && !filter.value) {
        if (first < m_history.size()) {
            const std::size_t n = std::min(count, m_history.size() - first);
            found.assign(m_history.begin() + static_cast<std::ptrdiff_t>(first),
                         m_history.begin() + static_cast<std::ptrdiff_t>(first + n));
        }
        return found;
    }
    std::size_t seen = 0;
    for (const Event& event : m_history) {
        if (found.size() == count) {
            break;
        }
        if (filter.keeps(event) && seen++ >= first) {
            found.push_back(event);
        }
    }
    return found;
}

void ProfilerRecording::onRunStart(std::uint64_t cycle)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isOn.load()) {
        return;
    }
    if (cycle < m_lastCycle.load()) { // a reset: cycles restart, the recording's time goes on
        m_resetOffset += m_lastCycle.load();
        m_calls.abandonAll();
        m_lastNext.reset();
        m_nextUnknown = false;
    }
    m_lastCycle.store(cycle);
    const std::uint64_t time = timeAt(cycle);
    const std::uint32_t pc = readRegister(target::Register::PC);
    if (m_nextUnknown) {
        m_nextUnknown = false;
        m_lastNext = pc;
        if (matters(pc)) {
            arrive(pc, readRegister(target::Register::SP), time, false);
        }
        return;
    }
    if (m_lastNext == pc) {
        return; // resumes where it stopped
    }
    m_lastNext = pc;
    arrive(pc, readRegister(target::Register::SP), time, true);
}

// Most instructions matter to no area: they cost a look at the next address.
void ProfilerRecording::onInstruction(std::uint32_t address, std::uint32_t, std::uint64_t cycle)
{
    if (!m_isOn.load(std::memory_order_acquire)) {
        return;
    }
    m_lastCycle.store(cycle, std::memory_order_relaxed);
    const bool afterWrite = m_nextUnknown && matters(address);
    const std::optional<std::uint32_t> next = m_target.nextAddress();
    m_nextUnknown = !next;
    m_lastNext = next;
    const bool atExit = m_calls.hasExits() && m_calls.isExit(address);
    const bool toNext = next && matters(*next);
    if (!afterWrite && !atExit && !toNext) {
        return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isOn.load()) {
        return;
    }
    const std::uint64_t time = timeAt(cycle);
    if (afterWrite) {
        arrive(address, readRegister(target::Register::SP), time > 0 ? time - 1 : 0, false);
    }
    if (atExit && !m_startAddress) {
        ended(m_calls.executed(address, time));
    }
    if (toNext) {
        arrive(*next, readRegister(target::Register::SP), time, false);
    }
}

void ProfilerRecording::onWrite(std::uint32_t address, std::uint32_t size, std::uint64_t value, std::uint64_t cycle)
{
    if (!m_isOn.load(std::memory_order_acquire) || m_startAddress || !touchesData(address, size)) {
        return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isOn.load()) {
        return;
    }
    const std::uint64_t time = timeAt(cycle);
    const std::uint64_t end = std::uint64_t{address} + size;
    // A data area has at most four bytes: one that starts three bytes before the write may overlap it.
    auto it = m_dataAreas.lower_bound(address >= 3 ? address - 3 : 0);
    for (; it != m_dataAreas.end() && it->first < end; ++it) {
        const ProfilerArea& area = m_areas[it->second];
        if (std::uint64_t{area.address} + area.size > address) {
            write(it->second, valueAfterWrite(area, address, size, value), time);
        }
    }
}

bool ProfilerRecording::touchesData(std::uint32_t address, std::uint32_t size) const
{
    const std::uint64_t end = std::uint64_t{address} + size;
    for (auto it = m_dataAreas.lower_bound(address >= 3 ? address - 3 : 0); it != m_dataAreas.end() && it->first < end;
         ++it) {
        if (std::uint64_t{m_areas[it->second].address} + m_areas[it->second].size > address) {
            return true;
        }
    }
    return false;
}

bool ProfilerRecording::matters(std::uint32_t pc) const
{
    return m_startAddress ? pc == *m_startAddress : m_calls.matters(pc);
}

std::uint64_t ProfilerRecording::timeAt(std::uint64_t cycle) const
{
    const std::uint64_t absolute = cycle + m_resetOffset;
    return absolute >= m_zero ? absolute - m_zero : 0;
}

void ProfilerRecording::arrive(std::uint32_t pc, std::uint32_t sp, std::uint64_t now, bool isJump)
{
    if (m_startAddress) {
        if (pc != *m_startAddress) {
            return;
        }
        m_startAddress.reset();
        m_zero += now;
        now = 0;
    }
    ended(isJump ? m_calls.jump(pc, sp, now) : m_calls.arrive(pc, sp, now));
    const std::vector<std::uint32_t> entered = m_calls.entriesAt(pc);
    if (entered.empty()) {
        return;
    }
    const std::uint32_t returnAddress = readRegister(target::Register::LR);
    for (std::uint32_t area : entered) {
        if (m_calls.enter(area, sp, returnAddress, now)) {
            addEvent(m_areas[area].handle, kEntryValue, now);
        }
    }
}

void ProfilerRecording::ended(const std::vector<CallTracker::Call>& calls)
{
    for (const CallTracker::Call& call : calls) {
        ProfilerTime& time = m_codeTimes[call.area];
        time.addHit();
        time.addPeriod(call.exit - call.entry, call.isOutermost);
        ++m_analyzed;
        addEvent(m_areas[call.area].handle, 0, call.exit);
    }
}

void ProfilerRecording::write(std::size_t area, std::uint32_t value, std::uint64_t now)
{
    std::map<std::uint32_t, ProfilerTime>& values = m_valueTimes[area];
    std::optional<Held>& held = m_held[area];
    if (held) {
        values[held->value].addPeriod(now - held->since);
        held.reset();
    }
    auto time = values.find(value);
    if (time == values.end()) {
        if (values.size() >= kMaxValues) {
            m_overrun = true;
            return;
        }
        time = values.emplace(value, ProfilerTime()).first;
    }
    time->second.addHit();
    ++m_analyzed;
    held = Held{value, now};
    addEvent(m_areas[area].handle, value, now);
}

// The area's bytes as they are, with those of the write over them: the write may cover part of the area only.
std::uint32_t ProfilerRecording::valueAfterWrite(const ProfilerArea& area, std::uint32_t address, std::uint32_t size,
                                                 std::uint64_t value) const
{
    std::uint8_t bytes[4] = {};
    try {
        m_target.readMemory(area.address, bytes, area.size);
    } catch (...) {
        // Checked when the area was added; the write's bytes are all there is.
    }
    const std::uint64_t from = std::max<std::uint64_t>(area.address, address);
    const std::uint64_t to = std::min<std::uint64_t>(std::uint64_t{area.address} + area.size,
                                                     std::uint64_t{address} + size);
    for (std::uint64_t at = from; at < to; ++at) {
        bytes[at - area.address] = static_cast<std::uint8_t>(value >> (8 * (at - address)));
    }
    std::uint32_t result = 0;
    for (std::uint32_t i = area.size; i > 0; --i) {
        result = result << 8 | bytes[i - 1];
    }
    return result;
}

void ProfilerRecording::addEvent(std::uint32_t handle, std::uint32_t value, std::uint64_t time)
{
    if (m_history.size() >= kMaxHistory) {
        m_overrun = true;
        return;
    }
    m_history.push_back(Event{handle, value, time});
}

std::uint32_t ProfilerRecording::readRegister(target::Register reg)
{
    try {
        return m_target.readRegister(reg) & (reg == target::Register::SP ? ~0u : ~1u);
    } catch (...) {
        m_failed = true;
        return 0;
    }
}

} // namespace quillon::services
