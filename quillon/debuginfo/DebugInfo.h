#pragma once

#include "debuginfo/CallFrameInfo.h"
#include "debuginfo/CallerFrame.h"
#include "debuginfo/CompileUnit.h"
#include "debuginfo/ElfImage.h"
#include "debuginfo/FrameContext.h"
#include "debuginfo/Function.h"
#include "debuginfo/LineTable.h"
#include "debuginfo/Location.h"
#include "debuginfo/Type.h"
#include "debuginfo/TypeTable.h"
#include "debuginfo/Variable.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

typedef struct Dwarf Dwarf;

namespace quillon::debuginfo {

/// The debug information of one ELF file: compile units, functions, globals and file statics,
/// types, line table and call-frame information, read once when opened. Move-only; owns the file,
/// the libelf and libdw handles. Its const operations may run on several threads at once.
/// Pointers it hands out (functions, variables, types) live as long as it does.
class DebugInfo {
public:
    /// Reads the file. Throws DebugInfoError naming the file: it cannot be read, it is not an ARM
    /// ELF, it has no DWARF.
    static DebugInfo open(const std::string& path);

    DebugInfo(DebugInfo&&) noexcept;
    DebugInfo& operator=(DebugInfo&&) noexcept;
    ~DebugInfo();

    const ElfImage& elf() const { return m_elf; }
    const std::vector<CompileUnit>& units() const { return m_units; }
    const std::vector<Function>& functions() const { return m_functions; }
    /// Globals and file statics (function-local statics are locals of their function).
    const std::vector<Variable>& globals() const { return m_globals; }
    /// Types; also makes pointer, array and qualified types on demand.
    TypeTable& types() const { return *m_types; }
    const LineTable& lines() const { return m_lines; }
    const CallFrameInfo& frames() const { return *m_frames; }

    // By name. Where a name is defined in several units (statics), the preferred unit's comes
    // first, then an external one, then the first read.
    const Function* findFunction(const std::string& name, std::optional<std::size_t> preferredUnit = std::nullopt) const;
    std::vector<const Function*> findFunctions(const std::string& name) const;
    const Variable* findGlobal(const std::string& name, std::optional<std::size_t> preferredUnit = std::nullopt) const;
    std::vector<const Variable*> findGlobals(const std::string& name) const;
    /// The global or static `name` of the unit of `file` (full path or trailing components).
    const Variable* findGlobal(const std::string& file, const std::string& name) const;
    /// A named type from a C type text (see TypeTable::find).
    const Type* findType(const std::string& text, std::optional<std::size_t> preferredUnit = std::nullopt) const;
    /// The unit whose primary file is `file` (full path or trailing components).
    std::optional<std::size_t> findUnit(const std::string& file) const;

    // By address.
    const Function* functionAt(std::uint32_t address) const;
    /// The global or static whose bytes hold the address.
    const Variable* globalAt(std::uint32_t address) const;
    std::optional<std::size_t> unitAt(std::uint32_t address) const;

    // Frames.
    /// Where a breakpoint on the function stops: after its prologue, at its first line of body; at
    /// its entry in optimized code, whose locations hold there already.
    std::uint32_t breakpointAddress(const Function& function) const;
    /// Where the variable is in the frame at pc. `function` is the function whose frame it is
    /// (for DW_OP_fbreg); nullptr for globals. Throws DebugInfoError naming the variable when the
    /// location cannot be evaluated.
    Location locate(const Variable& variable, const Function* function, std::uint32_t pc,
                    const FrameContext& frame) const;
    /// The function's frame base at pc (what DW_OP_fbreg counts from).
    std::uint32_t frameBase(const Function& function, std::uint32_t pc, const FrameContext& frame) const;
    /// The caller of the frame at pc (see CallFrameInfo::unwind).
    std::optional<CallerFrame> unwind(std::uint32_t pc, const FrameContext& frame) const;

private:
    struct DwarfCloser {
        void operator()(Dwarf* dwarf) const;
    };
    struct AddressEntry {
        std::uint32_t low;
        std::uint32_t high;
        std::size_t index;
    };

    explicit DebugInfo(ElfImage elf);
    void index();
    template <typename T>
    static const T* preferred(const std::vector<T>& items, const std::vector<std::size_t>* candidates,
                              std::optional<std::size_t> preferredUnit);
    static const AddressEntry* entryAt(const std::vector<AddressEntry>& entries, std::uint32_t address);

    // Members go in reverse order: the CFI before the Dwarf before the ELF they read.
    ElfImage m_elf;
    std::unique_ptr<Dwarf, DwarfCloser> m_dwarf;
    std::unique_ptr<CallFrameInfo> m_frames;
    std::unique_ptr<TypeTable> m_types;
    std::vector<CompileUnit> m_units;
    std::vector<Function> m_functions;
    std::vector<Variable> m_globals;
    LineTable m_lines;
    std::unordered_map<std::string, std::vector<std::size_t>> m_functionsByName;
    std::unordered_map<std::string, std::vector<std::size_t>> m_globalsByName;
    std::vector<AddressEntry> m_functionRanges; ///< by low address
    std::vector<AddressEntry> m_globalRanges;   ///< by low address
};

} // namespace quillon::debuginfo
