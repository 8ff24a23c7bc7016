#pragma once

#include "debuginfo/Type.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace quillon::debuginfo {

/// Owner of all types of one debug information: those read from the DWARF (one per type entry)
/// and those made later (pointers to, arrays of, qualified forms of a type). Finds named types
/// from C type texts. Safe to use from several threads once loaded.
class TypeTable {
public:
    TypeTable();
    TypeTable(const TypeTable&) = delete;
    TypeTable& operator=(const TypeTable&) = delete;

    const Type* voidType() const { return m_void; }

    /// The named type of a C type text: "int", "unsigned long long", "struct point", "union number",
    /// "enum color", a typedef name. Types of the preferred compile unit come first, then complete
    /// definitions; standard C base types are there even when the DWARF has none (ARM EABI sizes).
    /// nullptr if there is no such type.
    const Type* find(const std::string& text, std::optional<std::size_t> preferredUnit = std::nullopt) const;
    /// The first enum type read that has an enumerator of the name; nullptr if there is none.
    const Type* findEnumeratorType(const std::string& name) const;

    const Type* pointerTo(const Type* target);
    const Type* arrayOf(const Type* element, std::optional<std::uint64_t> count);
    /// `qualifier` is Kind::Const, Kind::Volatile or Kind::Restrict.
    const Type* qualified(const Type* target, Type::Kind qualifier);

    std::size_t size() const;

    // Building, by the readers.
    Type* create(Type::Kind kind, std::string identifier, std::uint64_t byteSize);
    /// The type read from the DWARF entry at the offset; nullptr if not read yet.
    const Type* forEntry(std::uint64_t entryOffset) const;
    void bindEntry(std::uint64_t entryOffset, const Type* type);
    /// Makes a named base, struct, union, enum or typedef type findable, as declared in `unit`.
    void addNamed(const Type* type, std::size_t unit);
    /// Adds the standard C base types that the DWARF did not name.
    void completeBaseTypes();

    /// The canonical (GCC) spelling of a C base type text: "unsigned" -> "unsigned int",
    /// "unsigned long long" -> "long long unsigned int"; nothing if the text is not a base type.
    static std::optional<std::string> canonicalBaseName(const std::string& text);

private:
    struct Named {
        const Type* type;
        std::size_t unit;
    };

    Type* createLocked(Type::Kind kind, std::string identifier, std::uint64_t byteSize);
    static std::optional<std::string> lookupKey(const std::string& text);

    mutable std::mutex m_mutex; ///< guards m_types and m_derived: types are made while in use
    std::vector<std::unique_ptr<Type>> m_types;
    std::unordered_map<std::uint64_t, const Type*> m_byEntry;
    std::unordered_map<std::string, std::vector<Named>> m_named;
    std::map<std::tuple<const Type*, int, std::uint64_t>, const Type*> m_derived;
    const Type* m_void = nullptr;
};

} // namespace quillon::debuginfo
