#include "debuginfo/ProgramReader.h"

#include "debuginfo/LocationReader.h"
#include "debuginfo/SourcePath.h"

#include <dwarf.h>

#include <algorithm>

namespace quillon::debuginfo {

ProgramReader::ProgramReader(Dwarf* dwarf, const ElfImage& elf, TypeTable& types)
    : m_dwarf(dwarf), m_elf(elf), m_types(types), m_typeReader(types)
{
}

void ProgramReader::read(std::vector<CompileUnit>& units, std::vector<Function>& functions,
                         std::vector<Variable>& globals)
{
    Dwarf_CU* cu = nullptr;
    Dwarf_Die raw;
    std::uint8_t unitType = 0;
    Dwarf_Half version = 0;
    while (dwarf_get_units(m_dwarf, cu, &cu, &version, &unitType, &raw, nullptr) == 0) {
        if (unitType != DW_UT_compile && unitType != DW_UT_partial) {
            continue;
        }
        const DwarfDie unitEntry(raw);
        const std::size_t unit = units.size();
        m_unitHasLocationLists = false;
        units.push_back(readUnit(unitEntry));
        m_compDir = units.back().compDir;
        units.back().version = version;
        for (const DwarfDie& child : unitEntry.children()) {
            const int tag = child.tag();
            if (tag == DW_TAG_subprogram) {
                readFunction(child, unit, functions);
            } else if (tag == DW_TAG_variable) {
                Variable variable = readVariable(child, unit, false);
                if ((variable.address &&
                     !isDiscarded(*variable.address, variable.name, ElfImage::SymbolKind::Object)) ||
                    (!variable.address && !variable.location.empty() && !child.flag(DW_AT_declaration))) {
                    globals.push_back(std::move(variable));
                }
            } else if (isTypeTag(tag)) {
                m_typeReader.read(child, unit);
            }
        }
        units[unit].hasLocationLists = m_unitHasLocationLists;
    }
    m_types.completeBaseTypes();
}

CompileUnit ProgramReader::readUnit(const DwarfDie& entry) const
{
    CompileUnit unit;
    unit.name = entry.name();
    Dwarf_Attribute attr;
    if (const char* dir = entry.attribute(DW_AT_comp_dir, &attr) ? dwarf_formstring(&attr) : nullptr) {
        unit.compDir = dir;
    }
    if (const char* producer = entry.attribute(DW_AT_producer, &attr) ? dwarf_formstring(&attr) : nullptr) {
        unit.producer = producer;
    }
    unit.path = SourcePath::full(unit.compDir, unit.name);
    const int language = dwarf_srclang(entry.raw());
    unit.language = language > 0 ? static_cast<unsigned>(language) : 0;
    for (const AddressRange& range : entry.ranges()) {
        if (range.low != 0 || m_elf.hasSymbolAt(0, ElfImage::SymbolKind::Function)) {
            unit.ranges.push_back(range);
        }
    }
    return unit;
}

void ProgramReader::readFunction(const DwarfDie& entry, std::size_t unit, std::vector<Function>& functions)
{
    Function function;
    function.ranges = entry.ranges();
    if (function.ranges.empty()) {
        return; // a declaration, or an abstract instance that is only inlined
    }
    // Assembler units give function addresses with the Thumb bit; instructions are 2-byte aligned.
    for (AddressRange& range : function.ranges) {
        range.low &= ~std::uint32_t(1);
        range.high &= ~std::uint32_t(1);
    }
    Dwarf_Addr low = 0;
    function.entry = dwarf_lowpc(entry.raw(), &low) == 0
                         ? static_cast<std::uint32_t>(low) & ~std::uint32_t(1)
                         : std::min_element(function.ranges.begin(), function.ranges.end(),
                                            [](const AddressRange& a, const AddressRange& b) { return a.low < b.low; })
                               ->low;
    function.name = entry.name();
    if (isDiscarded(function.entry, function.name, ElfImage::SymbolKind::Function)) {
        return;
    }
    function.unit = unit;
    function.isExternal = entry.flag(DW_AT_external);
    function.declFile = SourcePath::full(m_compDir, entry.declFile());
    function.declLine = entry.declLine();
    function.returnType = m_typeReader.typeOf(entry, unit);
    function.frameBase = LocationReader::read(entry, DW_AT_frame_base);

    Type* type = m_types.create(Type::Kind::Function, "", 0);
    type->setTarget(function.returnType);
    type->setPrototyped(entry.flag(DW_AT_prototyped));
    for (const DwarfDie& child : entry.children()) {
        if (child.tag() == DW_TAG_formal_parameter) {
            function.parameters.push_back(readVariable(child, unit, true));
            type->addParameter(function.parameters.back().type);
        } else if (child.tag() == DW_TAG_unspecified_parameters) {
            type->setVariadic(true);
        }
    }
    function.type = type;
    readScope(entry, unit, function.body);
    functions.push_back(std::move(function));
}

void ProgramReader::readScope(const DwarfDie& entry, std::size_t unit, Scope& scope)
{
    const bool inlined = entry.tag() == DW_TAG_inlined_subroutine;
    for (const DwarfDie& child : entry.children()) {
        switch (child.tag()) {
        case DW_TAG_variable:
            if (!child.flag(DW_AT_declaration)) {
                scope.variables.push_back(readVariable(child, unit, false));
            }
            break;
        case DW_TAG_formal_parameter:
            // A function's own parameters are read apart; an inlined body's are its variables.
            if (inlined) {
                scope.variables.push_back(readVariable(child, unit, true));
            }
            break;
        case DW_TAG_lexical_block:
        case DW_TAG_inlined_subroutine: {
            Scope inner;
            inner.ranges = child.ranges();
            if (child.tag() == DW_TAG_inlined_subroutine) {
                inner.inlinedFunction = child.name();
            }
            readScope(child, unit, inner);
            if (!inner.variables.empty() || !inner.children.empty()) {
                scope.children.push_back(std::move(inner));
            }
            break;
        }
        default:
            if (isTypeTag(child.tag())) {
                m_typeReader.read(child, unit); // a type local to the function
            }
            break;
        }
    }
}

Variable ProgramReader::readVariable(const DwarfDie& entry, std::size_t unit, bool isParameter)
{
    Variable variable;
    variable.name = entry.name();
    variable.type = m_typeReader.typeOf(entry, unit);
    variable.unit = unit;
    variable.isParameter = isParameter;
    variable.isExternal = entry.flag(DW_AT_external);
    variable.declFile = SourcePath::full(m_compDir, entry.declFile());
    variable.declLine = entry.declLine();
    if (entry.hasAttribute(DW_AT_location)) {
        variable.location = LocationReader::read(entry, DW_AT_location);
    } else {
        variable.location = LocationReader::constant(entry, variable.type);
    }
    if (!variable.location.empty() && !variable.location.isSingle()) {
        m_unitHasLocationLists = true;
    }
    if (variable.location.isSingle()) {
        const LocationExpression& expression = variable.location.entries().front().expression;
        if (expression.size() == 1 && expression.front().atom == DW_OP_addr) {
            variable.address = static_cast<std::uint32_t>(expression.front().number);
        }
    }
    return variable;
}

// The linker relocates addresses of code and data it drops to 0. Something real may be there (the
// vector table is): then a symbol of the name is. A function-local static's symbol is "name.N".
bool ProgramReader::isDiscarded(std::uint32_t address, const std::string& name, ElfImage::SymbolKind kind) const
{
    if (address != 0) {
        return false;
    }
    for (const ElfImage::Symbol* symbol : m_elf.symbolsAt(0)) {
        if (symbol->kind == kind &&
            (symbol->name == name || symbol->name.compare(0, name.size() + 1, name + ".") == 0)) {
            return false;
        }
    }
    return true;
}

bool ProgramReader::isTypeTag(int tag)
{
    switch (tag) {
    case DW_TAG_base_type:
    case DW_TAG_structure_type:
    case DW_TAG_union_type:
    case DW_TAG_class_type:
    case DW_TAG_enumeration_type:
    case DW_TAG_typedef:
    case DW_TAG_pointer_type:
    case DW_TAG_const_type:
    case DW_TAG_volatile_type:
    case DW_TAG_restrict_type:
    case DW_TAG_array_type:
    case DW_TAG_subroutine_type:
        return true;
    default:
        return false;
    }
}

} // namespace quillon::debuginfo
