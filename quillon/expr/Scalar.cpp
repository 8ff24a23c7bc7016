#include "expr/Scalar.h"

#include "expr/ExprError.h"

namespace quillon::expr {
namespace {

using debuginfo::Type;

std::uint64_t lowBytes(const std::vector<std::uint8_t>& bytes)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < bytes.size() && i < 8; ++i) {
        bits |= std::uint64_t(bytes[i]) << (8 * i);
    }
    return bits;
}

} // namespace

Scalar Scalar::of(const Value& value, const target::Target& target)
{
    const Type* plain = value.plainType();
    Scalar scalar;
    switch (plain->kind()) {
    case Type::Kind::Void:
        return scalar;
    case Type::Kind::Struct:
    case Type::Kind::Union:
    case Type::Kind::Array:
        scalar.code = Code::Compound;
        return scalar;
    case Type::Kind::Function:
        scalar.code = Code::Address;
        scalar.bitSize = 32;
        scalar.bits = value.address().value_or(0) | 1u; // as code holds it: with the Thumb bit
        return scalar;
    case Type::Kind::Pointer:
        scalar.code = Code::Address;
        scalar.bitSize = 32;
        scalar.bits = lowBytes(value.bytes(target)) & 0xFFFFFFFFu;
        return scalar;
    default:
        break;
    }
    const std::size_t size = plain->size();
    scalar.bitSize = static_cast<std::uint8_t>(size * 8);
    scalar.bits = lowBytes(value.bytes(target));
    if (plain->isFloat()) {
        scalar.code = Code::Float;
    } else if (plain->isSigned()) {
        scalar.code = Code::Signed;
    } else {
        scalar.code = Code::Unsigned;
    }
    return scalar;
}

Value Scalar::toValue(const debuginfo::TypeTable& types) const
{
    const char* name = nullptr;
    const unsigned width = bitSize <= 8 ? 8 : bitSize <= 16 ? 16 : bitSize <= 32 ? 32 : bitSize <= 64 ? 64 : 0;
    switch (code) {
    case Code::Signed:
        name = width == 8 ? "signed char" : width == 16 ? "short" : width == 32 ? "int" : width == 64 ? "long long" : nullptr;
        break;
    case Code::Unsigned:
        name = width == 8    ? "unsigned char"
               : width == 16 ? "unsigned short"
               : width == 32 ? "unsigned int"
               : width == 64 ? "unsigned long long"
                             : nullptr;
        break;
    case Code::Float:
        name = bitSize == 32 ? "float" : bitSize == 64 ? "double" : nullptr;
        break;
    case Code::Address:
        name = "unsigned int";
        break;
    default:
        break;
    }
    const Type* type = name ? types.find(name) : nullptr;
    if (type == nullptr) {
        throw ExprError("no C type has the type code " + std::to_string(static_cast<unsigned>(code)) + " and " +
                        std::to_string(bitSize) + " bits");
    }
    std::uint64_t value = bits;
    if (code != Code::Float && width < 64) {
        value &= (std::uint64_t(1) << width) - 1;
    }
    return Value::ofInteger(type, value);
}

} // namespace quillon::expr
