#include "services/BreakpointTable.h"

#include <algorithm>
#include <cstdio>

#include "services/ServiceError.h"

namespace quillon::services {

namespace {

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(value));
    return text;
}

} // namespace

std::string BreakpointTable::describe(const Settings& settings)
{
    switch (settings.kind) {
    case Kind::Function:
        return "function '" + settings.name + "' at " + hex(settings.address);
    case Kind::Line:
        return "line " + std::to_string(settings.line) + " of '" + settings.name + "' at " + hex(settings.address);
    case Kind::Address:
        break;
    }
    return "address " + hex(settings.address);
}

bool BreakpointTable::set(Settings settings, std::function<bool()> condition)
{
    settings.address &= ~1u;
    auto existing = m_settings.find(settings.address);
    if (settings.hardware && (existing == m_settings.end() || !existing->second.hardware)) {
        auto inUse = std::count_if(m_settings.begin(), m_settings.end(), [](const auto& s) { return s.second.hardware; });
        if (static_cast<std::size_t>(inUse) >= hardwareLimit) {
            throw ServiceError(ServiceError::Kind::Failed, "no free hardware breakpoint for " + describe(settings) + " (" +
                                                               std::to_string(hardwareLimit) + " in use)");
        }
    }
    target::BreakpointOptions options;
    options.enabled = settings.enabled;
    options.hitCount = settings.hitCount;
    options.condition = std::move(condition);
    m_target.setBreakpoint(settings.address, std::move(options));
    bool added = existing == m_settings.end();
    m_settings[settings.address] = std::move(settings);
    return added;
}

std::map<std::uint32_t, BreakpointTable::Settings>::iterator BreakpointTable::find(std::uint32_t address)
{
    auto it = m_settings.find(address & ~1u);
    if (it == m_settings.end()) {
        throw ServiceError(ServiceError::Kind::NoBreakpoint, "no breakpoint at " + hex(address & ~1u));
    }
    return it;
}

void BreakpointTable::remove(std::uint32_t address)
{
    auto it = find(address);
    m_target.removeBreakpoint(it->first);
    m_settings.erase(it);
}

void BreakpointTable::removeAll()
{
    for (const auto& [address, settings] : m_settings) {
        m_target.removeBreakpoint(address);
    }
    m_settings.clear();
}

void BreakpointTable::enable(std::uint32_t address, bool enabled)
{
    auto it = find(address);
    m_target.enableBreakpoint(it->first, enabled);
    it->second.enabled = enabled;
}

void BreakpointTable::enableAll(bool hardware, bool enabled)
{
    for (auto& [address, settings] : m_settings) {
        if (settings.hardware == hardware) {
            m_target.enableBreakpoint(address, enabled);
            settings.enabled = enabled;
        }
    }
}

BreakpointTable::Entry BreakpointTable::entry(const Settings& settings) const
{
    auto breakpoint = m_target.breakpoint(settings.address);
    return Entry{settings, breakpoint ? breakpoint->hits() : 0};
}

std::optional<BreakpointTable::Entry> BreakpointTable::at(std::uint32_t address) const
{
    auto it = m_settings.find(address & ~1u);
    if (it == m_settings.end()) {
        return std::nullopt;
    }
    return entry(it->second);
}

std::vector<BreakpointTable::Entry> BreakpointTable::list() const
{
    std::vector<Entry> entries;
    for (const auto& [address, settings] : m_settings) {
        entries.push_back(entry(settings));
    }
    return entries;
}

} // namespace quillon::services
