#include "debuginfo/Type.h"

#include <algorithm>

namespace quillon::debuginfo {

namespace {

bool isQualifier(Type::Kind kind)
{
    return kind == Type::Kind::Const || kind == Type::Kind::Volatile || kind == Type::Kind::Restrict;
}

unsigned qualifierBit(Type::Kind kind)
{
    return kind == Type::Kind::Const ? 1u : kind == Type::Kind::Volatile ? 2u : kind == Type::Kind::Restrict ? 4u : 0u;
}

const char* qualifierText(Type::Kind kind)
{
    switch (kind) {
    case Type::Kind::Const:
        return "const";
    case Type::Kind::Volatile:
        return "volatile";
    default:
        return "restrict";
    }
}

// A declarator follows its specifier after a space, but for an array's brackets: "char[16]".
std::string joined(const std::string& specifier, const std::string& declarator)
{
    if (declarator.empty()) {
        return specifier;
    }
    return specifier + (declarator.front() == '[' ? "" : " ") + declarator;
}

const Type& orVoid(const Type* type)
{
    static const Type voidType(Type::Kind::Void, "void", 0);
    return type ? *type : voidType;
}

} // namespace

Type::Type(Kind kind, std::string identifier, std::uint64_t byteSize)
    : m_kind(kind), m_identifier(std::move(identifier)), m_byteSize(byteSize)
{
}

std::uint64_t Type::size() const
{
    switch (m_kind) {
    case Kind::Void:
    case Kind::Function:
        return 0;
    case Kind::Typedef:
    case Kind::Const:
    case Kind::Volatile:
    case Kind::Restrict:
        return m_target ? m_target->size() : 0;
    case Kind::Array:
        return m_count && m_target ? *m_count * m_target->size() : 0;
    default:
        return m_declaration ? 0 : m_byteSize;
    }
}

Type::Encoding Type::encoding() const
{
    const Type* type = unqualified();
    if (type != this) {
        return type->encoding();
    }
    if (m_encoding != Encoding::None || m_kind != Kind::Enum) {
        return m_encoding;
    }
    if (m_target) {
        return m_target->encoding();
    }
    const bool negative = std::any_of(m_enumerators.begin(), m_enumerators.end(),
                                      [](const Enumerator& e) { return e.value < 0; });
    return negative ? Encoding::Signed : Encoding::Unsigned;
}

std::optional<Type::Member> Type::findMember(const std::string& name) const
{
    for (const Member& member : m_members) {
        if (member.name == name) {
            return member;
        }
        if (!member.name.empty() || member.type == nullptr) {
            continue;
        }
        if (auto inner = member.type->unqualified()->findMember(name)) {
            inner->offset += member.offset;
            return inner;
        }
    }
    return std::nullopt;
}

const Type::Enumerator* Type::findEnumerator(const std::string& name) const
{
    for (const Enumerator& enumerator : m_enumerators) {
        if (enumerator.name == name) {
            return &enumerator;
        }
    }
    return nullptr;
}

const Type::Enumerator* Type::findEnumerator(std::int64_t value) const
{
    for (const Enumerator& enumerator : m_enumerators) {
        if (enumerator.value == value) {
            return &enumerator;
        }
    }
    return nullptr;
}

const Type* Type::stripTypedefs() const
{
    const Type* type = this;
    while (type->m_kind == Kind::Typedef && type->m_target) {
        type = type->m_target;
    }
    return type;
}

const Type* Type::unqualified() const
{
    const Type* type = this;
    while ((type->m_kind == Kind::Typedef || isQualifier(type->m_kind)) && type->m_target) {
        type = type->m_target;
    }
    return type;
}

bool Type::isConst() const
{
    for (const Type* type = this; type; type = type->m_target) {
        if (type->m_kind == Kind::Const) {
            return true;
        }
        if (type->m_kind != Kind::Typedef && !isQualifier(type->m_kind)) {
            break;
        }
    }
    return false;
}

bool Type::isVolatile() const
{
    for (const Type* type = this; type; type = type->m_target) {
        if (type->m_kind == Kind::Volatile) {
            return true;
        }
        if (type->m_kind != Kind::Typedef && !isQualifier(type->m_kind)) {
            break;
        }
    }
    return false;
}

bool Type::isInteger() const
{
    const Type* type = unqualified();
    if (type->m_kind == Kind::Enum) {
        return true;
    }
    return type->m_kind == Kind::Base && type->m_encoding != Encoding::Float && type->m_encoding != Encoding::None;
}

bool Type::isFloat() const
{
    const Type* type = unqualified();
    return type->m_kind == Kind::Base && type->m_encoding == Encoding::Float;
}

bool Type::isSigned() const
{
    const Encoding e = encoding();
    return e == Encoding::Signed || e == Encoding::SignedChar || e == Encoding::Float;
}

bool Type::isPointer() const
{
    return unqualified()->m_kind == Kind::Pointer;
}

bool Type::isScalar() const
{
    return isInteger() || isFloat() || isPointer();
}

std::string Type::name() const
{
    return declarator("");
}

std::string Type::declare(const std::string& declaratorText) const
{
    return declarator(declaratorText);
}

// C declarators read inside out: each level wraps the text of the levels it holds.
std::string Type::declarator(const std::string& inner) const
{
    switch (m_kind) {
    case Kind::Pointer: {
        const Type& pointee = orVoid(m_target);
        const bool grouped = pointee.m_kind == Kind::Array || pointee.m_kind == Kind::Function;
        return pointee.declarator(grouped ? "(*" + inner + ")" : "*" + inner);
    }
    case Kind::Array:
        return orVoid(m_target).declarator(inner + "[" + (m_count ? std::to_string(*m_count) : "") + "]");
    case Kind::Function:
        return orVoid(m_target).declarator(inner + "(" + parameterList() + ")");
    case Kind::Const:
    case Kind::Volatile:
    case Kind::Restrict:
        return qualifiedDeclarator(orVoid(m_target), qualifierBit(m_kind), inner);
    default:
        return joined(specifier(), inner);
    }
}

// Qualifiers of a pointer are the pointer's own ("char *const"); those of an array its elements'
// ("const char[4]"). A run of them is said once each, in the order "const volatile restrict".
std::string Type::qualifiedDeclarator(const Type& qualified, unsigned qualifiers, const std::string& inner)
{
    const Type* type = &qualified;
    while (isQualifier(type->m_kind)) {
        qualifiers |= qualifierBit(type->m_kind);
        type = &orVoid(type->m_target);
    }
    if (type->m_kind == Kind::Array) {
        const std::string count = type->m_count ? std::to_string(*type->m_count) : "";
        return qualifiedDeclarator(orVoid(type->m_target), qualifiers, inner + "[" + count + "]");
    }
    std::string text;
    for (Kind kind : {Kind::Const, Kind::Volatile, Kind::Restrict}) {
        if ((qualifiers & qualifierBit(kind)) != 0) {
            text += (text.empty() ? "" : " ") + std::string(qualifierText(kind));
        }
    }
    if (type->m_kind == Kind::Pointer) {
        return type->declarator(joined(text, inner));
    }
    return text.empty() ? type->declarator(inner) : text + " " + type->declarator(inner);
}

std::string Type::specifier() const
{
    const std::string tag = m_identifier.empty() ? "{...}" : m_identifier;
    switch (m_kind) {
    case Kind::Struct:
        return "struct " + tag;
    case Kind::Union:
        return "union " + tag;
    case Kind::Enum:
        return "enum " + tag;
    case Kind::Void:
        return m_identifier.empty() ? "void" : m_identifier;
    default:
        return m_identifier;
    }
}

std::string Type::parameterList() const
{
    if (!m_prototyped) {
        return "";
    }
    if (m_parameters.empty()) {
        return m_variadic ? "..." : "void";
    }
    std::string text;
    for (const Type* parameter : m_parameters) {
        text += (text.empty() ? "" : ", ") + orVoid(parameter).name();
    }
    return m_variadic ? text + ", ..." : text;
}

} // namespace quillon::debuginfo
