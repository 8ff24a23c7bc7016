#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "debuginfo/AddressRange.h"
#include "debuginfo/CallerFrame.h"
#include "debuginfo/FrameContext.h"
#include "debuginfo/LineTable.h"
#include "services/Program.h"
#include "services/ScalarType.h"

namespace quillon::services {

/// Where a symbol is: its address, its size in bytes and the kind of its value.
struct SymbolInfo {
    std::string name;
    std::uint32_t address = 0;
    std::uint32_t size = 0;
    ScalarType type;
};

/// Symbols, functions and source lines of the downloaded programs, both ways. With several programs a name or an
/// address is looked up in download order, and the first program that knows it answers.
class SymbolIndex {
public:
    /// What getSymbolAt may answer with; 0 means all of them.
    enum SymbolKinds : unsigned { Variables = 1, Labels = 2, Functions = 4, Lines = 8, Constants = 16 };

    void setPrograms(std::vector<Program> programs) { m_programs = std::move(programs); }
    const std::vector<Program>& programs() const { return m_programs; }

    /// A function by name: its entry and the bytes of its code (DWARF, else the ELF symbol table).
    std::optional<SymbolInfo> function(const std::string& name) const;
    /// A global or static variable by name: its address, size and type.
    std::optional<SymbolInfo> variable(const std::string& name) const;
    /// Any symbol of the ELF symbol table by name.
    std::optional<SymbolInfo> label(const std::string& name) const;
    /// A function, else a variable, else a label.
    std::optional<SymbolInfo> any(const std::string& name) const;

    /// What stands at the address, by the first kind of `kinds` that has something there, in the order functions,
    /// variables, labels, lines: "name" at a symbol's start, "name+0x1a" inside it, "file:line" for a line.
    std::optional<std::string> symbolAt(unsigned kinds, std::uint32_t address) const;
    /// Name of the function whose code holds the address.
    std::optional<std::string> functionAt(std::uint32_t address) const;
    std::optional<debuginfo::LineTable::SourceLine> lineAt(std::uint32_t address) const;
    /// Addresses where code of the line begins, ascending; empty for a line without code.
    std::vector<std::uint32_t> addressesOfLine(const std::string& file, unsigned line) const;
    /// Full paths of the source files of all line tables, sorted, each once.
    std::vector<std::string> sourceFiles() const;

    /// Where a breakpoint on the function stops (after its prologue). A ServiceError NotFound names an unknown one.
    std::uint32_t functionBreakpointAddress(const std::string& name) const;
    /// The first statement address of the line. A ServiceError NotFound for a line without code.
    std::uint32_t lineBreakpointAddress(const std::string& file, unsigned line) const;

    /// Where a breakpoint on the function whose entry is `address` stops; nothing when no function with debug
    /// information starts there.
    std::optional<std::uint32_t> afterPrologue(std::uint32_t address) const;

    /// Step range of the line that holds the address; nothing outside the line tables.
    std::optional<debuginfo::AddressRange> lineRange(std::uint32_t address) const;
    bool isStatementStart(std::uint32_t address) const;
    /// The caller of the frame at pc by the call-frame information of the program that covers pc.
    std::optional<debuginfo::CallerFrame> unwind(std::uint32_t pc, const debuginfo::FrameContext& frame) const;

private:
    std::vector<Program> m_programs;
};

} // namespace quillon::services
