#pragma once

#include "debuginfo/DwarfDie.h"
#include "debuginfo/TypeTable.h"

#include <cstddef>
#include <unordered_set>

namespace quillon::debuginfo {

/// Turns DWARF type entries into Types of a TypeTable, one per entry, each entry read once.
class TypeReader {
public:
    explicit TypeReader(TypeTable& table) : m_table(table) {}

    /// The type of a type entry, as seen from compile unit `unit`.
    const Type* read(const DwarfDie& entry, std::size_t unit);
    /// The entry's DW_AT_type, or void when it has none.
    const Type* typeOf(const DwarfDie& entry, std::size_t unit);

private:
    Type* readUncached(const DwarfDie& entry, std::size_t unit);
    Type* start(const DwarfDie& entry, Type::Kind kind, std::uint64_t byteSize);
    void readArray(const DwarfDie& entry, Type* array, std::size_t unit);
    void readMembers(const DwarfDie& entry, Type* type, std::size_t unit);
    void readEnumerators(const DwarfDie& entry, Type* type, std::size_t unit);
    void readParameters(const DwarfDie& entry, Type* type, std::size_t unit);

    TypeTable& m_table;
    std::unordered_set<std::uint64_t> m_reading; ///< entries being read, to cut reference cycles
};

} // namespace quillon::debuginfo
