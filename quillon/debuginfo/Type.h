#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::debuginfo {

/// A C type of the debug information. Types are owned by a TypeTable and refer to each other by
/// plain pointers (a struct may point to itself); they live as long as their table. One object
/// stands for one DWARF type entry; a multi-dimensional DWARF array becomes arrays of arrays.
class Type {
public:
    enum class Kind { Void, Base, Pointer, Array, Struct, Union, Enum, Typedef, Const, Volatile, Restrict, Function };
    enum class Encoding { None, Signed, Unsigned, SignedChar, UnsignedChar, Bool, Float };

    /// A member of a struct or union.
    struct Member {
        std::string name;           ///< empty for an anonymous struct or union member
        const Type* type = nullptr;
        std::uint64_t offset = 0;   ///< bytes from the start of the enclosing type
        unsigned bitSize = 0;       ///< bit fields: their width; 0 for other members
        unsigned bitOffset = 0;     ///< bit fields: first bit, counted from bit 0 of the byte at
                                    ///< `offset` with the bytes read little-endian

        bool isBitField() const { return bitSize != 0; }
    };

    struct Enumerator {
        std::string name;
        std::int64_t value = 0;
    };

    Type(Kind kind, std::string identifier, std::uint64_t byteSize);

    Kind kind() const { return m_kind; }
    /// The name in the DWARF: "int", "point" of struct point, "tick_t"; empty if anonymous.
    const std::string& identifier() const { return m_identifier; }
    /// sizeof: follows typedefs and qualifiers, multiplies array dimensions; 0 for void, function
    /// types, incomplete types and arrays of unknown size.
    std::uint64_t size() const;
    /// Pointee, array element, the type a typedef or qualifier stands for, the return type of a
    /// function type, the underlying integer type of an enum (nullptr if the DWARF gives none).
    const Type* target() const { return m_target; }
    /// Arrays: number of elements, nothing when unknown (`[]`).
    std::optional<std::uint64_t> count() const { return m_count; }
    /// Base types and enums: how the bits are read.
    Encoding encoding() const;
    /// A struct, union or enum that is declared but not defined here.
    bool isDeclaration() const { return m_declaration; }

    const std::vector<Member>& members() const { return m_members; }
    /// The member of the name, looking into anonymous struct and union members (the offset is then
    /// from the start of this type).
    std::optional<Member> findMember(const std::string& name) const;
    const std::vector<Enumerator>& enumerators() const { return m_enumerators; }
    const Enumerator* findEnumerator(const std::string& name) const;
    const Enumerator* findEnumerator(std::int64_t value) const;
    /// Function types: parameter types in order, whether `...` follows, whether it has a prototype.
    const std::vector<const Type*>& parameters() const { return m_parameters; }
    bool isVariadic() const { return m_variadic; }
    bool isPrototyped() const { return m_prototyped; }

    /// Follows typedefs.
    const Type* stripTypedefs() const;
    /// Follows typedefs and const, volatile and restrict.
    const Type* unqualified() const;
    /// Const or volatile at the top, through typedefs.
    bool isConst() const;
    bool isVolatile() const;
    /// Integer types after typedefs and qualifiers: base integers, characters, _Bool and enums.
    bool isInteger() const;
    bool isFloat() const;
    bool isSigned() const;
    bool isPointer() const;
    /// Integers, floats and pointers.
    bool isScalar() const;

    /// The C type text: "int", "struct point *", "char[16]", "const char *const", "int (*)(int, int)".
    std::string name() const;
    /// A C declaration of `declarator` with this type: "char name[16]", "int (*handler)(int, int)".
    std::string declare(const std::string& declarator) const;

    // Building, by the readers and the table.
    void setTarget(const Type* target) { m_target = target; }
    void setCount(std::optional<std::uint64_t> count) { m_count = count; }
    void setEncoding(Encoding encoding) { m_encoding = encoding; }
    void setByteSize(std::uint64_t byteSize) { m_byteSize = byteSize; }
    void setDeclaration(bool declaration) { m_declaration = declaration; }
    void addMember(Member member) { m_members.push_back(std::move(member)); }
    void addEnumerator(Enumerator enumerator) { m_enumerators.push_back(std::move(enumerator)); }
    void addParameter(const Type* parameter) { m_parameters.push_back(parameter); }
    void setVariadic(bool variadic) { m_variadic = variadic; }
    void setPrototyped(bool prototyped) { m_prototyped = prototyped; }

private:
    std::string declarator(const std::string& inner) const;
    static std::string qualifiedDeclarator(const Type& qualified, unsigned qualifiers, const std::string& inner);
    std::string specifier() const;
    std::string parameterList() const;

    Kind m_kind;
    std::string m_identifier;
    std::uint64_t m_byteSize;
    const Type* m_target = nullptr;
    std::optional<std::uint64_t> m_count;
    Encoding m_encoding = Encoding::None;
    bool m_declaration = false;
    std::vector<Member> m_members;
    std::vector<Enumerator> m_enumerators;
    std::vector<const Type*> m_parameters;
    bool m_variadic = false;
    bool m_prototyped = true;
};

} // namespace quillon::debuginfo
