#include "services/TraceRecorder.h"

#include <algorithm>

namespace quillon::services {

TraceRecorder::TraceRecorder(const target::Target& target) : m_target(target), m_entryFilter(1u << 10, 0) {}

void TraceRecorder::prepare(std::vector<TraceFunction> functions, bool instructions,
                            std::optional<std::uint32_t> startEntry)
{
    std::sort(functions.begin(), functions.end(),
              [](const TraceFunction& a, const TraceFunction& b) { return a.low < b.low; });
    m_functions = std::move(functions);
    m_entries.clear();
    std::fill(m_entryFilter.begin(), m_entryFilter.end(), 0);
    for (std::size_t i = 0; i < m_functions.size(); ++i) {
        m_entries.emplace(m_functions[i].entry, i);
        const std::size_t bit = filterBit(m_functions[i].entry);
        m_entryFilter[bit >> 6] |= std::uint64_t{1} << (bit & 63);
    }
    m_nameOf.assign(m_functions.size(), TraceEvent::kNoFunction);
    m_instructions = instructions;
    m_waitFor = startEntry;
    m_hasPrevious = false;
}

void TraceRecorder::clear()
{
    m_events.clear();
    m_names.clear();
    m_nameIndex.clear();
    std::fill(m_nameOf.begin(), m_nameOf.end(), TraceEvent::kNoFunction);
    m_full = false;
}

void TraceRecorder::restore(std::vector<std::string> names, std::vector<TraceEvent> events, bool full)
{
    clear();
    m_names = std::move(names);
    for (std::uint32_t i = 0; i < m_names.size(); ++i) {
        m_nameIndex.emplace(m_names[i], i);
    }
    m_events = std::move(events);
    m_full = full;
}

void TraceRecorder::addMarker(std::uint64_t cycle, std::uint32_t address, std::uint32_t value)
{
    TraceEvent event;
    event.kind = TraceEvent::Kind::Marker;
    event.cycle = cycle;
    event.address = address;
    event.value = value;
    event.function = functionAt(address);
    push(event);
}

void TraceRecorder::clearMarkers()
{
    m_events.erase(std::remove_if(m_events.begin(), m_events.end(),
                                  [](const TraceEvent& e) { return e.kind == TraceEvent::Kind::Marker; }),
                   m_events.end());
}

void TraceRecorder::onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t cycle)
{
    if (!m_recording.load(std::memory_order_relaxed) || m_full) {
        return;
    }
    bool isEntry = false;
    std::size_t function = 0;
    const auto entry = mayBeEntry(address) ? m_entries.find(address) : m_entries.end();
    if (entry != m_entries.end()) {
        function = entry->second;
        const TraceFunction& f = m_functions[function];
        const bool fromOutside = !m_hasPrevious || m_previous < f.low || m_previous >= f.high;
        isEntry = fromOutside || isCall(m_previous, m_previousSize);
    }
    m_hasPrevious = true;
    m_previous = address;
    m_previousSize = size;
    if (m_waitFor) {
        if (!isEntry || address != *m_waitFor) {
            return;
        }
        m_waitFor.reset();
    }
    if (isEntry) {
        push(TraceEvent{TraceEvent::Kind::Entry, cycle, address, nameIndex(function), 0});
    } else if (m_instructions) {
        push(TraceEvent{TraceEvent::Kind::Instruction, cycle, address, functionAt(address), 0});
    }
}

bool TraceRecorder::isCall(std::uint32_t address, std::uint32_t size) const
{
    std::uint8_t code[4] = {};
    try {
        m_target.readMemory(address, code, size);
    } catch (...) {
        return false;
    }
    const auto first = static_cast<std::uint16_t>(code[0] | code[1] << 8);
    if (size == 2) {
        return (first & 0xFF87u) == 0x4780u; // BLX <register>
    }
    const auto second = static_cast<std::uint16_t>(code[2] | code[3] << 8);
    return (first & 0xF800u) == 0xF000u && (second & 0xD000u) == 0xD000u; // BL <label>
}

std::uint32_t TraceRecorder::functionAt(std::uint32_t address)
{
    auto it = std::upper_bound(m_functions.begin(), m_functions.end(), address,
                               [](std::uint32_t at, const TraceFunction& f) { return at < f.low; });
    if (it == m_functions.begin()) {
        return TraceEvent::kNoFunction;
    }
    --it;
    if (address >= it->high) {
        return TraceEvent::kNoFunction;
    }
    return nameIndex(static_cast<std::size_t>(it - m_functions.begin()));
}

std::uint32_t TraceRecorder::nameIndex(std::size_t function)
{
    std::uint32_t& index = m_nameOf[function];
    if (index == TraceEvent::kNoFunction) {
        const std::string& name = m_functions[function].name;
        const auto [known, added] = m_nameIndex.emplace(name, static_cast<std::uint32_t>(m_names.size()));
        if (added) {
            m_names.push_back(name);
        }
        index = known->second;
    }
    return index;
}

void TraceRecorder::push(const TraceEvent& event)
{
    if (m_events.size() >= kCapacity) {
        m_full = true;
        return;
    }
    m_events.push_back(event);
}

} // namespace quillon::services
