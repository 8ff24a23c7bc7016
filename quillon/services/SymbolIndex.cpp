#include "services/SymbolIndex.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "debuginfo/DebugInfoError.h"
#include "services/ServiceError.h"

namespace quillon::services {

namespace {

using debuginfo::ElfImage;

std::string withOffset(const std::string& name, std::uint32_t start, std::uint32_t address)
{
    if (address == start) {
        return name;
    }
    char offset[16];
    std::snprintf(offset, sizeof offset, "+0x%x", static_cast<unsigned>(address - start));
    return name + offset;
}

std::optional<SymbolInfo> elfSymbol(const ElfImage& elf, const std::string& name, std::optional<ElfImage::SymbolKind> kind)
{
    for (const ElfImage::Symbol* symbol : elf.findSymbols(name)) {
        if (!kind || symbol->kind == *kind) {
            ScalarType type = symbol->kind == ElfImage::SymbolKind::Function ? ScalarType{ScalarType::Address, 32}
                                                                             : ScalarType{};
            return SymbolInfo{symbol->name, symbol->address, symbol->size, type};
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<SymbolInfo> SymbolIndex::function(const std::string& name) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            if (const debuginfo::Function* f = debug->findFunction(name)) {
                debuginfo::AddressRange extent = f->extent();
                return SymbolInfo{f->name, f->entry, extent.high - extent.low, ScalarType{ScalarType::Address, 32}};
            }
        }
        if (auto symbol = elfSymbol(program.elf(), name, ElfImage::SymbolKind::Function)) {
            return symbol;
        }
    }
    return std::nullopt;
}

std::optional<SymbolInfo> SymbolIndex::variable(const std::string& name) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            const debuginfo::Variable* v = debug->findGlobal(name);
            if (v && v->address) {
                auto size = static_cast<std::uint32_t>(v->type ? v->type->size() : 0);
                return SymbolInfo{v->name, *v->address, size, ScalarType::of(v->type)};
            }
        }
        if (auto symbol = elfSymbol(program.elf(), name, ElfImage::SymbolKind::Object)) {
            return symbol;
        }
    }
    return std::nullopt;
}

std::optional<SymbolInfo> SymbolIndex::label(const std::string& name) const
{
    for (const Program& program : m_programs) {
        if (auto symbol = elfSymbol(program.elf(), name, std::nullopt)) {
            return symbol;
        }
    }
    return std::nullopt;
}

std::optional<SymbolInfo> SymbolIndex::any(const std::string& name) const
{
    if (auto f = function(name)) {
        return f;
    }
    if (auto v = variable(name)) {
        return v;
    }
    return label(name);
}

std::optional<std::string> SymbolIndex::functionAt(std::uint32_t address) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            if (const debuginfo::Function* f = debug->functionAt(address)) {
                return f->name;
            }
        }
        const ElfImage::Symbol* symbol = program.elf().symbolAt(address);
        if (symbol && symbol->kind == ElfImage::SymbolKind::Function) {
            return symbol->name;
        }
    }
    return std::nullopt;
}

std::optional<std::string> SymbolIndex::symbolAt(unsigned kinds, std::uint32_t address) const
{
    if (kinds == 0) {
        kinds = Variables | Labels | Functions | Lines;
    }
    for (const Program& program : m_programs) {
        const debuginfo::DebugInfo* debug = program.debugInfo();
        const ElfImage::Symbol* symbol = program.elf().symbolAt(address);
        if (kinds & Functions) {
            if (const debuginfo::Function* f = debug ? debug->functionAt(address) : nullptr) {
                return withOffset(f->name, f->entry, address);
            }
            if (symbol && symbol->kind == ElfImage::SymbolKind::Function) {
                return withOffset(symbol->name, symbol->address, address);
            }
        }
        if (kinds & Variables) {
            const debuginfo::Variable* v = debug ? debug->globalAt(address) : nullptr;
            if (v && v->address) {
                return withOffset(v->name, *v->address, address);
            }
            if (symbol && symbol->kind == ElfImage::SymbolKind::Object) {
                return withOffset(symbol->name, symbol->address, address);
            }
        }
        if (kinds & Labels) {
            std::vector<const ElfImage::Symbol*> labels = program.elf().symbolsAt(address);
            if (!labels.empty()) {
                return labels.front()->name;
            }
        }
        if ((kinds & Lines) && debug) {
            if (auto line = debug->lines().find(address)) {
                return line->file + ":" + std::to_string(line->line);
            }
        }
    }
    return std::nullopt;
}

std::optional<debuginfo::LineTable::SourceLine> SymbolIndex::lineAt(std::uint32_t address) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            if (auto line = debug->lines().find(address)) {
                return line;
            }
        }
    }
    return std::nullopt;
}

std::vector<std::uint32_t> SymbolIndex::addressesOfLine(const std::string& file, unsigned line) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            std::vector<std::uint32_t> addresses = debug->lines().addresses(file, line);
            if (!addresses.empty()) {
                return addresses;
            }
        }
    }
    return {};
}

std::vector<std::string> SymbolIndex::sourceFiles() const
{
    std::set<std::string> files;
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            files.insert(debug->lines().files().begin(), debug->lines().files().end());
        }
    }
    return {files.begin(), files.end()};
}

std::uint32_t SymbolIndex::functionBreakpointAddress(const std::string& name) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            if (const debuginfo::Function* f = debug->findFunction(name)) {
                return debug->breakpointAddress(*f);
            }
        }
        if (auto symbol = elfSymbol(program.elf(), name, ElfImage::SymbolKind::Function)) {
            return symbol->address;
        }
    }
    throw ServiceError(ServiceError::Kind::NotFound, "no function '" + name + "'");
}

std::uint32_t SymbolIndex::lineBreakpointAddress(const std::string& file, unsigned line) const
{
    std::vector<std::uint32_t> addresses = addressesOfLine(file, line);
    if (addresses.empty()) {
        throw ServiceError(ServiceError::Kind::NotFound, "no code at line " + std::to_string(line) + " of '" + file + "'");
    }
    return addresses.front();
}

std::optional<std::uint32_t> SymbolIndex::afterPrologue(std::uint32_t address) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            const debuginfo::Function* f = debug->functionAt(address);
            if (f && f->entry == address) {
                return debug->breakpointAddress(*f);
            }
        }
    }
    return std::nullopt;
}

std::optional<debuginfo::AddressRange> SymbolIndex::lineRange(std::uint32_t address) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            if (auto range = debug->lines().lineRange(address)) {
                return range;
            }
        }
    }
    return std::nullopt;
}

bool SymbolIndex::isStatementStart(std::uint32_t address) const
{
    return std::any_of(m_programs.begin(), m_programs.end(), [&](const Program& program) {
        return program.debugInfo() && program.debugInfo()->lines().isStatementStart(address);
    });
}

std::optional<debuginfo::CallerFrame> SymbolIndex::unwind(std::uint32_t pc, const debuginfo::FrameContext& frame) const
{
    for (const Program& program : m_programs) {
        if (const auto* debug = program.debugInfo()) {
            try {
                if (auto caller = debug->unwind(pc, frame)) {
                    return caller;
                }
            } catch (const debuginfo::DebugInfoError&) {
                // a rule this frame cannot satisfy: try the next program, then give up
            }
        }
    }
    return std::nullopt;
}

} // namespace quillon::services
