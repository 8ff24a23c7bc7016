#pragma once

#include "debuginfo/AddressRange.h"

#include <dwarf.h>
#include <elfutils/libdw.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::debuginfo {

/// A debugging information entry of libdw, with the attribute reads the readers need. Attributes
/// are read through DW_AT_abstract_origin and DW_AT_specification ("integrated"), so that a
/// concrete instance or a definition sees what its declaration says.
class DwarfDie {
public:
    explicit DwarfDie(const Dwarf_Die& die) : m_die(die) {}

    Dwarf_Die* raw() const { return &m_die; }
    int tag() const { return dwarf_tag(&m_die); }
    std::uint64_t offset() const { return dwarf_dieoffset(&m_die); }

    /// DW_AT_name, empty if none.
    std::string name() const;
    bool hasAttribute(int attribute) const;
    /// The attribute, integrated; false if absent.
    bool attribute(int attribute, Dwarf_Attribute* result) const;
    std::optional<std::uint64_t> unsignedValue(int attribute) const;
    /// A constant attribute read as signed: sdata as is, data1 to data8 sign-extended by their size.
    std::optional<std::int64_t> signedValue(int attribute) const;
    bool flag(int attribute) const;
    /// The entry an attribute refers to (DW_AT_type, ...).
    std::optional<DwarfDie> reference(int attribute) const;
    std::optional<DwarfDie> type() const { return reference(DW_AT_type); }

    std::vector<DwarfDie> children() const;
    /// The address ranges of DW_AT_low_pc/high_pc or DW_AT_ranges; empty if none.
    std::vector<AddressRange> ranges() const;
    /// Declaring file (full path as in the line table) and line; empty and 0 if not given.
    std::string declFile() const;
    unsigned declLine() const;

private:
    mutable Dwarf_Die m_die; ///< libdw takes non-const entries even to read them
};

} // namespace quillon::debuginfo
