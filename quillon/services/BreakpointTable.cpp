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

std::string BreakpointTable::describe(const Spec& spec)
{
    switch (spec.kind) {
    case Kind::Function:
        return "function '" + spec.name + "' at " + hex(spec.address);
    case Kind::Line:
        return "line " + std::to_string(spec.line) + " of '" + spec.name + "' at " + hex(spec.address);
    case Kind::Address:
        break;
    }
    return "address " + hex(spec.address);
}

bool BreakpointTable::set(Spec spec, std::function<bool()> condition)
{
    spec.address &= ~1u;
    auto existing = m_specs.find(spec.address);
    if (spec.hardware && (existing == m_specs.end() || !existing->second.hardware)) {
        auto inUse = std::count_if(m_specs.begin(), m_specs.end(), [](const auto& s) { return s.second.hardware; });
        if (static_cast<std::size_t>(inUse) >= hardwareLimit) {
            throw ServiceError(ServiceError::Kind::Failed, "no free hardware breakpoint for " + describe(spec) + " (" +
                                                               std::to_string(hardwareLimit) + " in use)");
        }
    }
    target::BreakpointOptions options;
    options.enabled = spec.enabled;
    options.hitCount = spec.hitCount;
    options.condition = std::move(condition);
    m_target.setBreakpoint(spec.address, std::move(options));
    bool added = existing == m_specs.end();
    m_specs[spec.address] = std::move(spec);
    return added;
}

std::map<std::uint32_t, BreakpointTable::Spec>::iterator BreakpointTable::find(std::uint32_t address)
{
    auto it = m_specs.find(address & ~1u);
    if (it == m_specs.end()) {
        throw ServiceError(ServiceError::Kind::NoBreakpoint, "no breakpoint at " + hex(address & ~1u));
    }
    return it;
}

void BreakpointTable::remove(std::uint32_t address)
{
    auto it = find(address);
    m_target.removeBreakpoint(it->first);
    m_specs.erase(it);
}

void BreakpointTable::removeAll()
{
    for (const auto& [address, spec] : m_specs) {
        m_target.removeBreakpoint(address);
    }
    m_specs.clear();
}

void BreakpointTable::enable(std::uint32_t address, bool enabled)
{
    auto it = find(address);
    m_target.enableBreakpoint(it->first, enabled);
    it->second.enabled = enabled;
}

void BreakpointTable::enableAll(bool hardware, bool enabled)
{
    for (auto& [address, spec] : m_specs) {
        if (spec.hardware == hardware) {
            m_target.enableBreakpoint(address, enabled);
            spec.enabled = enabled;
        }
    }
}

BreakpointTable::Entry BreakpointTable::entry(const Spec& spec) const
{
    auto breakpoint = m_target.breakpoint(spec.address);
    return Entry{spec, breakpoint ? breakpoint->hits() : 0};
}

std::optional<BreakpointTable::Entry> BreakpointTable::at(std::uint32_t address) const
{
    auto it = m_specs.find(address & ~1u);
    if (it == m_specs.end()) {
        return std::nullopt;
    }
    return entry(it->second);
}

std::vector<BreakpointTable::Entry> BreakpointTable::list() const
{
    std::vector<Entry> entries;
    for (const auto& [address, spec] : m_specs) {
        entries.push_back(entry(spec));
    }
    return entries;
}

} // namespace quillon::services
