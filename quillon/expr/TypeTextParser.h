#pragma once

#include "expr/Token.h"

#include "debuginfo/Type.h"
#include "debuginfo/TypeTable.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quillon::expr {

/// Reads C type names against the debug information's types, with the C base types where the
/// DWARF lacks them: "int", "unsigned char", "char[16]", "struct point", "ring_t *",
/// "const uint8_t *", "int *[4]", "long long[2][3]".
class TypeTextParser {
public:
    explicit TypeTextParser(debuginfo::TypeTable& types, std::optional<std::size_t> preferredUnit = std::nullopt)
        : m_types(types), m_unit(preferredUnit)
    {
    }

    /// The type of a whole text. Throws ExprError naming an unknown type or what does not fit.
    const debuginfo::Type* parse(const std::string& text) const;

    /// Whether the token can begin a type name: a type keyword or a typedef's name.
    bool startsTypeName(const Token& token) const;
    /// Base type words, qualifiers, struct, union and enum.
    static bool isTypeKeyword(const std::string& word);
    /// Reads a type name from tokens[pos], leaving pos behind it.
    const debuginfo::Type* parse(const std::vector<Token>& tokens, std::size_t& pos) const;

private:
    const debuginfo::Type* specifiers(const std::vector<Token>& tokens, std::size_t& pos) const;
    const debuginfo::Type* declarator(const debuginfo::Type* base, const std::vector<Token>& tokens,
                                      std::size_t& pos) const;

    debuginfo::TypeTable& m_types;
    std::optional<std::size_t> m_unit;
};

} // namespace quillon::expr
