#include "expr/ValueFormatter.h"

#include "expr/ExprError.h"

#include "target/Target.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace quillon::expr {
namespace {

using debuginfo::Type;

constexpr std::size_t elementLimit = 200;
constexpr std::size_t stringLimit = 200;

std::uint64_t bitsAt(const std::vector<std::uint8_t>& bytes, std::size_t offset, std::size_t size)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < size && i < 8 && offset + i < bytes.size(); ++i) {
        bits |= std::uint64_t(bytes[offset + i]) << (8 * i);
    }
    return bits;
}

std::uint64_t signExtend(std::uint64_t bits, std::size_t size)
{
    if (size >= 8 || size == 0) {
        return bits;
    }
    const unsigned width = static_cast<unsigned>(size * 8);
    const std::uint64_t mask = (std::uint64_t(1) << width) - 1;
    bits &= mask;
    return (bits >> (width - 1)) & 1 ? bits | ~mask : bits;
}

std::uint64_t masked(std::uint64_t bits, std::size_t size)
{
    return size >= 8 ? bits : bits & ((std::uint64_t(1) << (size * 8)) - 1);
}

bool isCharType(const Type* plain)
{
    const Type::Encoding encoding = plain->encoding();
    return plain->kind() == Type::Kind::Base && plain->size() == 1 &&
           (encoding == Type::Encoding::SignedChar || encoding == Type::Encoding::UnsignedChar);
}

/// A character inside quotes `quote`, escaped as C writes it.
std::string escaped(unsigned char c, char quote)
{
    switch (c) {
    case '\n': return "\\n";
    case '\t': return "\\t";
    case '\r': return "\\r";
    case '\a': return "\\a";
    case '\b': return "\\b";
    case '\f': return "\\f";
    case '\v': return "\\v";
    case '\\': return "\\\\";
    default: break;
    }
    if (c == static_cast<unsigned char>(quote)) {
        return std::string("\\") + quote;
    }
    if (c < 0x20 || c >= 0x7f) {
        char text[8];
        std::snprintf(text, sizeof text, "\\%03o", c);
        return text;
    }
    return std::string(1, static_cast<char>(c));
}

std::string unsignedText(std::uint64_t value, unsigned base)
{
    if (value == 0) {
        return "0";
    }
    std::string digits;
    while (value != 0) {
        digits.insert(digits.begin(), "0123456789abcdef"[value % base]);
        value /= base;
    }
    return digits;
}

std::string floatText(double value, bool isDouble)
{
    if (std::isnan(value)) {
        return std::signbit(value) ? "-nan" : "nan";
    }
    if (std::isinf(value)) {
        return value < 0 ? "-inf" : "inf";
    }
    char text[40];
    std::snprintf(text, sizeof text, isDouble ? "%.17g" : "%.9g", value);
    return text;
}

} // namespace

bool ValueFormatter::isDisplayFormat(const std::string& text)
{
    return text.size() == 1 && std::strchr("duxhobc", text[0]) != nullptr;
}

std::string ValueFormatter::format(const Value& value, const std::string& displayFormat) const
{
    if (!displayFormat.empty() && !isDisplayFormat(displayFormat)) {
        throw ExprError("unknown display format '" + displayFormat + "'");
    }
    const char format = displayFormat.empty() ? '\0' : displayFormat[0];
    const Type* plain = value.plainType();
    std::string out;
    if (plain->kind() == Type::Kind::Function) {
        const std::uint32_t address = value.address().value_or(0);
        return "{" + value.type()->name() + "} " + function(address | 1u);
    }
    if (plain->kind() == Type::Kind::Void) {
        return "void";
    }
    write(out, value.type(), value.bytes(m_target), 0, format);
    return out;
}

void ValueFormatter::write(std::string& out, const Type* type, const std::vector<std::uint8_t>& bytes,
                           std::size_t offset, char format) const
{
    const Type* plain = type->unqualified();
    switch (plain->kind()) {
    case Type::Kind::Struct:
    case Type::Kind::Union:
        writeStruct(out, plain, bytes, offset, format);
        return;
    case Type::Kind::Array:
        writeArray(out, plain, bytes, offset, format);
        return;
    case Type::Kind::Void:
    case Type::Kind::Function:
        out += "?";
        return;
    default:
        writeScalar(out, plain, bitsAt(bytes, offset, plain->size()), format);
    }
}

void ValueFormatter::writeScalar(std::string& out, const Type* plain, std::uint64_t bits, char format) const
{
    const std::size_t size = plain->size();
    const bool isPointer = plain->kind() == Type::Kind::Pointer;
    const bool isSigned = !isPointer && plain->isSigned();
    if (plain->isFloat()) {
        double number = 0;
        if (size == 4) {
            float single;
            const auto word = static_cast<std::uint32_t>(bits);
            std::memcpy(&single, &word, 4);
            number = single;
        } else {
            std::memcpy(&number, &bits, 8);
        }
        if (format == '\0') {
            out += floatText(number, size > 4);
            return;
        }
        bits = std::isfinite(number) ? static_cast<std::uint64_t>(static_cast<std::int64_t>(number)) : 0;
    }
    const std::uint64_t value = masked(bits, size);
    const auto signedValue = static_cast<std::int64_t>(signExtend(bits, size));
    switch (format) {
    case 'd':
        out += std::to_string(signedValue);
        return;
    case 'u':
        out += std::to_string(value);
        return;
    case 'x':
    case 'h':
        out += "0x" + unsignedText(value, 16);
        return;
    case 'o':
        out += value == 0 ? "0" : "0" + unsignedText(value, 8);
        return;
    case 'b':
        out += "0b" + unsignedText(value, 2);
        return;
    case 'c':
        out += std::to_string(isSigned ? signedValue : static_cast<std::int64_t>(value)) + " '" +
               escaped(static_cast<unsigned char>(value), '\'') + "'";
        return;
    default:
        break;
    }
    if (isPointer) {
        writePointer(out, plain, static_cast<std::uint32_t>(value));
        return;
    }
    if (plain->kind() == Type::Kind::Enum) {
        if (const Type::Enumerator* enumerator = plain->findEnumerator(isSigned ? signedValue : static_cast<std::int64_t>(value))) {
            out += enumerator->name;
            return;
        }
    }
    if (isCharType(plain)) {
        out += std::to_string(isSigned ? signedValue : static_cast<std::int64_t>(value)) + " '" +
               escaped(static_cast<unsigned char>(value), '\'') + "'";
        return;
    }
    out += isSigned ? std::to_string(signedValue) : std::to_string(value);
}

void ValueFormatter::writePointer(std::string& out, const Type* plain, std::uint32_t address) const
{
    out += "0x" + unsignedText(address, 16);
    const Type* target = plain->target();
    if (address == 0 || target == nullptr) {
        return;
    }
    const Type* pointee = target->unqualified();
    if (pointee->kind() == Type::Kind::Function) {
        const std::string name = function(address);
        const std::size_t open = name.find(" <");
        if (open != std::string::npos) {
            out += name.substr(open);
        }
        return;
    }
    if (!isCharType(pointee)) {
        return;
    }
    std::string text;
    for (std::size_t i = 0; i < stringLimit; ++i) {
        unsigned char c = 0;
        if (!m_target.memory().isMapped(address + i, 1)) {
            return;
        }
        m_target.readMemory(static_cast<std::uint32_t>(address + i), &c, 1);
        if (c == 0) {
            out += " \"" + text + "\"";
            return;
        }
        text += escaped(c, '"');
    }
    out += " \"" + text + "\"...";
}

std::string ValueFormatter::function(std::uint32_t address) const
{
    const std::uint32_t entry = address & ~1u;
    std::string text = "0x" + unsignedText(address, 16);
    const debuginfo::Function* found = m_debug.functionAt(entry);
    if (found != nullptr && found->entry == entry) {
        text += " <" + found->name + ">";
    }
    return text;
}

void ValueFormatter::writeStruct(std::string& out, const Type* plain, const std::vector<std::uint8_t>& bytes,
                                 std::size_t offset, char format) const
{
    out += "{";
    bool first = true;
    for (const Type::Member& member : plain->members()) {
        out += first ? "" : ", ";
        first = false;
        if (!member.name.empty()) {
            out += member.name + " = ";
        }
        if (!member.isBitField()) {
            write(out, member.type, bytes, offset + member.offset, format);
            continue;
        }
        const unsigned shift = member.bitOffset % 8;
        const std::size_t span = (shift + member.bitSize + 7) / 8;
        std::uint64_t bits = bitsAt(bytes, offset + member.offset + member.bitOffset / 8, span) >> shift;
        const std::uint64_t mask = member.bitSize >= 64 ? ~std::uint64_t(0) : (std::uint64_t(1) << member.bitSize) - 1;
        bits &= mask;
        if (member.type->isSigned() && (bits >> (member.bitSize - 1)) & 1) {
            bits |= ~mask;
        }
        writeScalar(out, member.type->unqualified(), bits, format);
    }
    out += "}";
}

void ValueFormatter::writeArray(std::string& out, const Type* plain, const std::vector<std::uint8_t>& bytes,
                                std::size_t offset, char format) const
{
    const Type* element = plain->target();
    const std::uint64_t count = plain->count().value_or(0);
    const std::uint64_t size = element ? element->size() : 0;
    if (element != nullptr && isCharType(element->unqualified()) && format == '\0') {
        // Up to the last character that is not a zero; zeros before it are escaped.
        std::uint64_t end = std::min<std::uint64_t>(count, bytes.size() > offset ? bytes.size() - offset : 0);
        while (end > 0 && bytes[offset + end - 1] == 0) {
            --end;
        }
        std::string text;
        for (std::uint64_t i = 0; i < end; ++i) {
            text += escaped(bytes[offset + i], '"');
        }
        out += "\"" + text + "\"";
        return;
    }
    out += "{";
    for (std::uint64_t i = 0; i < count && size != 0; ++i) {
        if (i == elementLimit) {
            out += "...";
            break;
        }
        out += i == 0 ? "" : ", ";
        write(out, element, bytes, offset + i * size, format);
    }
    out += "}";
}

} // namespace quillon::expr
