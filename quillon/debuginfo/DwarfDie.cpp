#include "debuginfo/DwarfDie.h"

#include <dwarf.h>

namespace quillon::debuginfo {

std::string DwarfDie::name() const
{
    Dwarf_Attribute attr;
    const char* text = attribute(DW_AT_name, &attr) ? dwarf_formstring(&attr) : nullptr;
    return text ? text : "";
}

bool DwarfDie::hasAttribute(int attributeCode) const
{
    return dwarf_hasattr_integrate(&m_die, attributeCode) != 0;
}

bool DwarfDie::attribute(int attributeCode, Dwarf_Attribute* result) const
{
    return dwarf_attr_integrate(&m_die, attributeCode, result) != nullptr;
}

std::optional<std::uint64_t> DwarfDie::unsignedValue(int attributeCode) const
{
    Dwarf_Attribute attr;
    Dwarf_Word value;
    if (!attribute(attributeCode, &attr) || dwarf_formudata(&attr, &value) != 0) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::int64_t> DwarfDie::signedValue(int attributeCode) const
{
    Dwarf_Attribute attr;
    if (!attribute(attributeCode, &attr)) {
        return std::nullopt;
    }
    const unsigned form = dwarf_whatform(&attr);
    if (form == DW_FORM_sdata || form == DW_FORM_implicit_const) {
        Dwarf_Sword value;
        return dwarf_formsdata(&attr, &value) == 0 ? std::optional<std::int64_t>(value) : std::nullopt;
    }
    Dwarf_Word value;
    if (dwarf_formudata(&attr, &value) != 0) {
        return std::nullopt;
    }
    unsigned bits = 64;
    switch (form) {
    case DW_FORM_data1:
        bits = 8;
        break;
    case DW_FORM_data2:
        bits = 16;
        break;
    case DW_FORM_data4:
        bits = 32;
        break;
    default:
        break;
    }
    if (bits < 64 && (value & (Dwarf_Word(1) << (bits - 1))) != 0) {
        value |= ~Dwarf_Word(0) << bits;
    }
    return static_cast<std::int64_t>(value);
}

bool DwarfDie::flag(int attributeCode) const
{
    Dwarf_Attribute attr;
    bool value = false;
    return attribute(attributeCode, &attr) && dwarf_formflag(&attr, &value) == 0 && value;
}

std::optional<DwarfDie> DwarfDie::reference(int attributeCode) const
{
    Dwarf_Attribute attr;
    Dwarf_Die target;
    if (!attribute(attributeCode, &attr) || dwarf_formref_die(&attr, &target) == nullptr) {
        return std::nullopt;
    }
    return DwarfDie(target);
}

std::vector<DwarfDie> DwarfDie::children() const
{
    std::vector<DwarfDie> result;
    Dwarf_Die child;
    if (dwarf_child(&m_die, &child) != 0) {
        return result;
    }
    do {
        result.emplace_back(child);
    } while (dwarf_siblingof(&child, &child) == 0);
    return result;
}

std::vector<AddressRange> DwarfDie::ranges() const
{
    std::vector<AddressRange> result;
    Dwarf_Addr base = 0, start = 0, end = 0;
    ptrdiff_t offset = 0;
    while ((offset = dwarf_ranges(&m_die, offset, &base, &start, &end)) > 0) {
        if (end > start) {
            result.push_back(AddressRange{static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end)});
        }
    }
    return result;
}

std::string DwarfDie::declFile() const
{
    const char* file = dwarf_decl_file(&m_die);
    return file ? file : "";
}

unsigned DwarfDie::declLine() const
{
    int line = 0;
    return dwarf_decl_line(&m_die, &line) == 0 && line > 0 ? static_cast<unsigned>(line) : 0;
}

} // namespace quillon::debuginfo
