#include "services/CoverageScope.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "services/AnalyzerError.h"

namespace quillon::services {

namespace {

using ElfSymbol = debuginfo::ElfImage::Symbol;
using ElfKind = debuginfo::ElfImage::SymbolKind;

AnalyzerError notFound(const std::string& message)
{
    return AnalyzerError(AnalyzerError::Kind::NotFound, message);
}

void addRanges(SpanSet& spans, const std::vector<debuginfo::AddressRange>& ranges)
{
    for (const debuginfo::AddressRange& range : ranges) {
        spans.add(range.low, range.high);
    }
}

std::optional<std::uint64_t> hexNumber(const std::string& text)
{
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data() + 2, text.data() + text.size(), value, 16);
    if (error != std::errc() || end != text.data() + text.size() || value > 0xFFFFFFFFu) {
        return std::nullopt;
    }
    return value;
}

} // namespace

CoverageScope::CoverageScope(const SymbolIndex& symbols, SpanSet memory, SpanSet downloaded,
                             std::filesystem::path folder)
    : m_symbols(symbols), m_memory(std::move(memory)), m_downloaded(std::move(downloaded)), m_folder(std::move(folder))
{
}

SpanSet CoverageScope::active(const CoverageConfiguration& configuration) const
{
    const CoverageConfiguration::Rangeset* rangeset = configuration.active();
    switch (configuration.selection()) {
    case CoverageConfiguration::Selection::IncludesOnly:
        return rangeset ? items(rangeset->includes) : SpanSet();
    case CoverageConfiguration::Selection::MinusExcludes: {
        SpanSet result = configuration.base() == CoverageConfiguration::Base::EntireMemory ? m_memory : m_downloaded;
        if (rangeset) {
            result.subtract(items(rangeset->excludes));
        }
        return result;
    }
    case CoverageConfiguration::Selection::All:
        break;
    }
    return configuration.base() == CoverageConfiguration::Base::EntireMemory ? m_memory : m_downloaded;
}

SpanSet CoverageScope::resolve(CoverageConfiguration::ItemKind kind, const std::string& name) const
{
    switch (kind) {
    case CoverageConfiguration::ItemKind::Folder:
        return folder(name);
    case CoverageConfiguration::ItemKind::Module:
        return module(name);
    case CoverageConfiguration::ItemKind::Function:
        return function(name);
    case CoverageConfiguration::ItemKind::Item:
        break;
    }
    return item(name);
}

SpanSet CoverageScope::items(const std::vector<CoverageConfiguration::Item>& items) const
{
    SpanSet result;
    for (const CoverageConfiguration::Item& item : items) {
        result.add(resolve(item.kind, item.name));
    }
    return result;
}

SpanSet CoverageScope::folder(const std::string& name) const
{
    if (name.empty()) {
        throw notFound("no folder given");
    }
    std::filesystem::path folder(name);
    if (folder.is_relative()) {
        folder = m_folder / folder;
    }
    std::string prefix = folder.lexically_normal().generic_string();
    if (prefix.empty() || prefix.back() != '/') {
        prefix += '/';
    }
    SpanSet result;
    bool found = false;
    for (const Program& program : m_symbols.programs()) {
        const debuginfo::DebugInfo* debug = program.debugInfo();
        for (std::size_t unit = 0; debug != nullptr && unit < debug->units().size(); ++unit) {
            const std::string path = std::filesystem::path(debug->units()[unit].path).lexically_normal().generic_string();
            if (path.compare(0, prefix.size(), prefix) == 0) {
                found = true;
                addRanges(result, debug->units()[unit].ranges);
            }
        }
    }
    if (!found) {
        throw notFound("no source file of the downloaded programs lies in folder '" + name + "'");
    }
    return result;
}

SpanSet CoverageScope::module(const std::string& name) const
{
    for (const Program& program : m_symbols.programs()) {
        const debuginfo::DebugInfo* debug = program.debugInfo();
        if (debug == nullptr || name.empty()) {
            continue;
        }
        if (const std::optional<std::size_t> unit = debug->findUnit(name)) {
            SpanSet result;
            addRanges(result, debug->units()[*unit].ranges);
            return result;
        }
    }
    throw notFound("no module '" + name + "' in the downloaded programs");
}

SpanSet CoverageScope::function(const std::string& name) const
{
    SpanSet result;
    for (const Program& program : m_symbols.programs()) {
        if (const debuginfo::DebugInfo* debug = program.debugInfo()) {
            for (const debuginfo::Function* f : debug->findFunctions(name)) {
                addRanges(result, f->ranges);
            }
        }
        if (result.empty()) {
            for (const ElfSymbol* symbol : program.elf().findSymbols(name)) {
                if (symbol->kind == ElfKind::Function) {
                    result.add(symbol->address, std::uint64_t(symbol->address) + symbol->size);
                }
            }
        }
        if (!result.empty()) {
            return result;
        }
    }
    throw notFound("no function '" + name + "' in the downloaded programs");
}

SpanSet CoverageScope::item(const std::string& name) const
{
    const std::size_t dash = name.find('-');
    if (dash != std::string::npos) {
        const auto first = hexNumber(name.substr(0, dash));
        const auto last = hexNumber(name.substr(dash + 1));
        if (!first || !last || *last < *first) {
            throw AnalyzerError(AnalyzerError::Kind::InvalidArgument,
                                "bad address range '" + name + "' (0x<first>-0x<last>, first not above last)");
        }
        SpanSet result;
        result.add(*first, *last + 1);
        return result;
    }
    for (const Program& program : m_symbols.programs()) {
        SpanSet result;
        for (const ElfSymbol* symbol : program.elf().findSymbols(name)) {
            result.add(symbol->address, std::uint64_t(symbol->address) + symbol->size);
        }
        if (!result.empty()) {
            return result;
        }
    }
    throw notFound("no symbol '" + name + "' with a size in the downloaded programs");
}

std::vector<CoverageScope::Function> CoverageScope::functionsIn(const SpanSet& spans) const
{
    std::vector<Function> result;
    std::set<std::string> seen;
    auto take = [&](const std::string& name, SpanSet code) {
        code.intersect(spans);
        if (!code.empty() && seen.insert(name + "@" + std::to_string(code.spans().front().begin)).second) {
            result.push_back(Function{name, std::move(code)});
        }
    };
    for (const Program& program : m_symbols.programs()) {
        SpanSet described;
        if (const debuginfo::DebugInfo* debug = program.debugInfo()) {
            for (const debuginfo::Function& f : debug->functions()) {
                SpanSet code;
                addRanges(code, f.ranges);
                described.add(code);
                take(f.name, std::move(code));
            }
        }
        for (const ElfSymbol& symbol : program.elf().symbols()) {
            if (symbol.kind == ElfKind::Function && symbol.size > 0 && !described.contains(symbol.address)) {
                take(symbol.name, SpanSet{{symbol.address, std::uint64_t(symbol.address) + symbol.size}});
            }
        }
    }
    std::sort(result.begin(), result.end(), [](const Function& a, const Function& b) {
        return a.code.spans().front().begin < b.code.spans().front().begin;
    });
    return result;
}

} // namespace quillon::services
