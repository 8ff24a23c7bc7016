#include "debuginfo/DebugInfo.h"

#include "debuginfo/DebugInfoError.h"
#include "debuginfo/LineTableReader.h"
#include "debuginfo/LocationEvaluator.h"
#include "debuginfo/ProgramReader.h"
#include "debuginfo/SourcePath.h"

#include <elfutils/libdw.h>

#include <algorithm>
#include <cstdio>

namespace quillon::debuginfo {

namespace {

std::string hex(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", value);
    return text;
}

} // namespace

void DebugInfo::DwarfCloser::operator()(Dwarf* dwarf) const
{
    dwarf_end(dwarf);
}

DebugInfo::DebugInfo(ElfImage elf) : m_elf(std::move(elf)), m_types(std::make_unique<TypeTable>()) {}
DebugInfo::DebugInfo(DebugInfo&&) noexcept = default;
DebugInfo& DebugInfo::operator=(DebugInfo&&) noexcept = default;
DebugInfo::~DebugInfo() = default;

DebugInfo DebugInfo::open(const std::string& path)
{
    DebugInfo info(ElfImage::open(path));
    info.m_dwarf.reset(dwarf_begin_elf(info.m_elf.elf(), DWARF_C_READ, nullptr));
    if (!info.m_dwarf) {
        throw DebugInfoError("'" + path + "' has no DWARF debug information");
    }
    try {
        ProgramReader(info.m_dwarf.get(), info.m_elf, *info.m_types)
            .read(info.m_units, info.m_functions, info.m_globals);
    } catch (const DebugInfoError& error) {
        throw DebugInfoError("'" + path + "': " + error.what());
    }
    info.m_lines = LineTableReader(info.m_dwarf.get(), info.m_elf).read();
    info.m_frames = std::make_unique<CallFrameInfo>(info.m_dwarf.get());
    info.index();
    return info;
}

void DebugInfo::index()
{
    for (std::size_t i = 0; i < m_functions.size(); ++i) {
        m_functionsByName[m_functions[i].name].push_back(i);
        for (const AddressRange& range : m_functions[i].ranges) {
            m_functionRanges.push_back(AddressEntry{range.low, range.high, i});
        }
    }
    for (std::size_t i = 0; i < m_globals.size(); ++i) {
        const Variable& global = m_globals[i];
        m_globalsByName[global.name].push_back(i);
        if (global.address) {
            const auto size = static_cast<std::uint32_t>(std::max<std::uint64_t>(global.type->size(), 1));
            m_globalRanges.push_back(AddressEntry{*global.address, *global.address + size, i});
        }
    }
    auto byLow = [](const AddressEntry& a, const AddressEntry& b) { return a.low < b.low; };
    std::sort(m_functionRanges.begin(), m_functionRanges.end(), byLow);
    std::sort(m_globalRanges.begin(), m_globalRanges.end(), byLow);
}

template <typename T>
const T* DebugInfo::preferred(const std::vector<T>& items, const std::vector<std::size_t>* candidates,
                              std::optional<std::size_t> preferredUnit)
{
    if (candidates == nullptr || candidates->empty()) {
        return nullptr;
    }
    const T* best = nullptr;
    int bestRank = -1;
    for (std::size_t index : *candidates) {
        const T& item = items[index];
        const int rank = (preferredUnit && item.unit == *preferredUnit ? 2 : 0) + (item.isExternal ? 1 : 0);
        if (rank > bestRank) {
            best = &item;
            bestRank = rank;
        }
    }
    return best;
}

const Function* DebugInfo::findFunction(const std::string& name, std::optional<std::size_t> preferredUnit) const
{
    auto found = m_functionsByName.find(name);
    return preferred(m_functions, found == m_functionsByName.end() ? nullptr : &found->second, preferredUnit);
}

std::vector<const Function*> DebugInfo::findFunctions(const std::string& name) const
{
    std::vector<const Function*> result;
    auto found = m_functionsByName.find(name);
    if (found != m_functionsByName.end()) {
        for (std::size_t index : found->second) {
            result.push_back(&m_functions[index]);
        }
    }
    return result;
}

const Variable* DebugInfo::findGlobal(const std::string& name, std::optional<std::size_t> preferredUnit) const
{
    auto found = m_globalsByName.find(name);
    return preferred(m_globals, found == m_globalsByName.end() ? nullptr : &found->second, preferredUnit);
}

std::vector<const Variable*> DebugInfo::findGlobals(const std::string& name) const
{
    std::vector<const Variable*> result;
    auto found = m_globalsByName.find(name);
    if (found != m_globalsByName.end()) {
        for (std::size_t index : found->second) {
            result.push_back(&m_globals[index]);
        }
    }
    return result;
}

const Variable* DebugInfo::findGlobal(const std::string& file, const std::string& name) const
{
    for (const Variable* global : findGlobals(name)) {
        if (SourcePath::names(file, m_units[global->unit].path)) {
            return global;
        }
    }
    return nullptr;
}

const Type* DebugInfo::findType(const std::string& text, std::optional<std::size_t> preferredUnit) const
{
    return m_types->find(text, preferredUnit);
}

std::optional<std::size_t> DebugInfo::findUnit(const std::string& file) const
{
    for (std::size_t i = 0; i < m_units.size(); ++i) {
        if (SourcePath::names(file, m_units[i].path)) {
            return i;
        }
    }
    return std::nullopt;
}

const DebugInfo::AddressEntry* DebugInfo::entryAt(const std::vector<AddressEntry>& entries, std::uint32_t address)
{
    auto next = std::upper_bound(entries.begin(), entries.end(), address,
                                 [](std::uint32_t a, const AddressEntry& e) { return a < e.low; });
    // Entries do not overlap: only the last one starting at or below the address can hold it.
    if (next == entries.begin() || address >= (next - 1)->high) {
        return nullptr;
    }
    return &*(next - 1);
}

const Function* DebugInfo::functionAt(std::uint32_t address) const
{
    const AddressEntry* entry = entryAt(m_functionRanges, address);
    return entry ? &m_functions[entry->index] : nullptr;
}

const Variable* DebugInfo::globalAt(std::uint32_t address) const
{
    const AddressEntry* entry = entryAt(m_globalRanges, address);
    return entry ? &m_globals[entry->index] : nullptr;
}

std::optional<std::size_t> DebugInfo::unitAt(std::uint32_t address) const
{
    if (const Function* function = functionAt(address)) {
        return function->unit;
    }
    for (std::size_t i = 0; i < m_units.size(); ++i) {
        for (const AddressRange& range : m_units[i].ranges) {
            if (range.contains(address)) {
                return i;
            }
        }
    }
    return std::nullopt;
}

std::uint32_t DebugInfo::breakpointAddress(const Function& function) const
{
    if (m_units[function.unit].hasLocationLists) {
        return function.entry; // optimized code: parameters are where the DWARF says from the start
    }
    return m_lines.afterPrologue(function.entry, function.extent());
}

std::uint32_t DebugInfo::frameBase(const Function& function, std::uint32_t pc, const FrameContext& frame) const
{
    const LocationExpression* expression = function.frameBase.at(pc);
    if (expression == nullptr) {
        throw DebugInfoError("'" + function.name + "' has no frame base at " + hex(pc));
    }
    const LocationEvaluator evaluator(frame, nullptr, [&] {
        auto cfa = m_frames->cfa(pc, frame);
        if (!cfa) {
            throw DebugInfoError("no call-frame information at " + hex(pc));
        }
        return *cfa;
    });
    const Location base = evaluator.locate(*expression);
    switch (base.kind()) {
    case Location::Kind::Memory:
        return base.address();
    case Location::Kind::Register: {
        // A register as frame base: its contents are the base.
        auto value = frame.readRegister(base.dwarfRegister());
        if (value) {
            return *value;
        }
        break;
    }
    default:
        break;
    }
    throw DebugInfoError("the frame base of '" + function.name + "' is not available at " + hex(pc));
}

Location DebugInfo::locate(const Variable& variable, const Function* function, std::uint32_t pc,
                           const FrameContext& frame) const
{
    const LocationExpression* expression = variable.location.at(pc);
    if (expression == nullptr) {
        return Location::optimizedOut();
    }
    LocationEvaluator::Provider frameBaseOf;
    if (function != nullptr) {
        frameBaseOf = [&] { return frameBase(*function, pc, frame); };
    }
    const LocationEvaluator evaluator(frame, frameBaseOf, [&] {
        auto cfa = m_frames->cfa(pc, frame);
        if (!cfa) {
            throw DebugInfoError("no call-frame information at " + hex(pc));
        }
        return *cfa;
    });
    try {
        return evaluator.locate(*expression);
    } catch (const DebugInfoError& error) {
        throw DebugInfoError("cannot locate '" + variable.name + "': " + error.what());
    }
}

std::optional<CallerFrame> DebugInfo::unwind(std::uint32_t pc, const FrameContext& frame) const
{
    return m_frames->unwind(pc, frame);
}

} // namespace quillon::debuginfo
