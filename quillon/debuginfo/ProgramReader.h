#pragma once

#include "debuginfo/CompileUnit.h"
#include "debuginfo/DwarfDie.h"
#include "debuginfo/ElfImage.h"
#include "debuginfo/Function.h"
#include "debuginfo/TypeReader.h"
#include "debuginfo/TypeTable.h"
#include "debuginfo/Variable.h"

#include <elfutils/libdw.h>

#include <cstddef>
#include <string>
#include <vector>

namespace quillon::debuginfo {

/// Reads compile units, functions with their parameters and scopes, globals and file statics,
/// and the named types of every unit. Functions and variables of code and data that the linker
/// dropped (relocated to address 0 where no symbol is) are left out.
class ProgramReader {
public:
    ProgramReader(Dwarf* dwarf, const ElfImage& elf, TypeTable& types);

    void read(std::vector<CompileUnit>& units, std::vector<Function>& functions, std::vector<Variable>& globals);

private:
    CompileUnit readUnit(const DwarfDie& entry) const;
    void readFunction(const DwarfDie& entry, std::size_t unit, std::vector<Function>& functions);
    void readScope(const DwarfDie& entry, std::size_t unit, Scope& scope);
    Variable readVariable(const DwarfDie& entry, std::size_t unit, bool isParameter);
    bool isDiscarded(std::uint32_t address, const std::string& name, ElfImage::SymbolKind kind) const;
    static bool isTypeTag(int tag);

    Dwarf* m_dwarf;
    const ElfImage& m_elf;
    TypeTable& m_types;
    TypeReader m_typeReader;
    bool m_unitHasLocationLists = false; ///< of the unit being read
    std::string m_compDir;               ///< of the unit being read
};

} // namespace quillon::debuginfo
