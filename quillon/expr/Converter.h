#pragma once

#include "expr/Value.h"

#include "debuginfo/TypeTable.h"

#include <cstddef>
#include <optional>

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// C's conversions between values: array and function decay, integer promotions, the usual
/// arithmetic conversions and conversion by assignment or cast. Types it makes (pointers, the
/// standard integer types) come from the type table.
class Converter {
public:
    /// Both must outlive the converter.
    Converter(debuginfo::TypeTable& types, const target::Target& target);

    debuginfo::TypeTable& types() const { return m_types; }
    const target::Target& target() const { return m_target; }

    const debuginfo::Type* intType() const { return m_int; }
    const debuginfo::Type* unsignedType() const { return m_unsigned; }
    const debuginfo::Type* longLongType() const { return m_longLong; }
    const debuginfo::Type* unsignedLongLongType() const { return m_unsignedLongLong; }
    const debuginfo::Type* floatType() const { return m_float; }
    const debuginfo::Type* doubleType() const { return m_double; }
    const debuginfo::Type* charType() const { return m_char; }

    /// An array in memory becomes a pointer to its first element, a function a pointer to it (with
    /// the Thumb bit, as the code holds it); other values stay.
    Value decay(const Value& value, std::optional<std::size_t> column = std::nullopt) const;
    /// The type an integer value is promoted to: int for all that int holds, else unsigned int or
    /// the 64-bit types; floats stay.
    const debuginfo::Type* promotedType(const Value& value) const;
    const debuginfo::Type* promotedType(const debuginfo::Type* type) const;
    /// The type of the usual arithmetic conversions of two arithmetic values or types.
    const debuginfo::Type* commonType(const Value& left, const Value& right) const;
    const debuginfo::Type* commonType(const debuginfo::Type* left, const debuginfo::Type* right) const;
    /// Converts a value as assignment and casts do. Throws ExprError for a conversion C does not
    /// have, naming both types.
    Value convert(const Value& value, const debuginfo::Type* to, std::optional<std::size_t> column = std::nullopt) const;
    /// A value is true when it is not zero; scalars only.
    bool truth(const Value& value, std::optional<std::size_t> column = std::nullopt) const;

    static bool isArithmetic(const debuginfo::Type* type);
    /// Function types, through typedefs and qualifiers.
    static bool isFunction(const debuginfo::Type* type);
    /// Alignment by the procedure call standard: a scalar's size, an aggregate's largest member.
    static std::size_t alignment(const debuginfo::Type* type);

private:
    const debuginfo::Type* baseType(const char* name) const;

    debuginfo::TypeTable& m_types;
    const target::Target& m_target;
    const debuginfo::Type* m_int;
    const debuginfo::Type* m_unsigned;
    const debuginfo::Type* m_longLong;
    const debuginfo::Type* m_unsignedLongLong;
    const debuginfo::Type* m_float;
    const debuginfo::Type* m_double;
    const debuginfo::Type* m_char;
};

} // namespace quillon::expr
