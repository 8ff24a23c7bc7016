#include "expr/Converter.h"

#include "expr/ExprError.h"

#include <algorithm>
#include <cmath>

namespace quillon::expr {
namespace {

using debuginfo::Type;

bool isAggregate(const Type* plain)
{
    return plain->kind() == Type::Kind::Struct || plain->kind() == Type::Kind::Union ||
           plain->kind() == Type::Kind::Array;
}

bool sameType(const Type* a, const Type* b)
{
    a = a->unqualified();
    b = b->unqualified();
    return a == b || (a->kind() == b->kind() && a->identifier() == b->identifier() && a->size() == b->size() &&
                      a->name() == b->name());
}

} // namespace

Converter::Converter(debuginfo::TypeTable& types, const target::Target& target)
    : m_types(types), m_target(target), m_int(baseType("int")), m_unsigned(baseType("unsigned int")),
      m_longLong(baseType("long long")), m_unsignedLongLong(baseType("unsigned long long")),
      m_float(baseType("float")), m_double(baseType("double")), m_char(baseType("char"))
{
}

const Type* Converter::baseType(const char* name) const
{
    const Type* type = m_types.find(name);
    if (type == nullptr) {
        throw ExprError(std::string("the debug information lacks the type '") + name + "'");
    }
    return type;
}

bool Converter::isArithmetic(const Type* type)
{
    return type->isInteger() || type->isFloat();
}

bool Converter::isFunction(const Type* type)
{
    return type->unqualified()->kind() == Type::Kind::Function;
}

std::size_t Converter::alignment(const Type* type)
{
    const Type* plain = type->unqualified();
    switch (plain->kind()) {
    case Type::Kind::Array:
        return plain->target() ? alignment(plain->target()) : 1;
    case Type::Kind::Struct:
    case Type::Kind::Union: {
        std::size_t result = 1;
        for (const Type::Member& member : plain->members()) {
            result = std::max(result, alignment(member.type));
        }
        return result;
    }
    default: {
        const std::size_t size = plain->size();
        return size == 0 ? 1 : std::min<std::size_t>(size, 8);
    }
    }
}

Value Converter::decay(const Value& value, std::optional<std::size_t> column) const
{
    const Type* plain = value.plainType();
    if (plain->kind() == Type::Kind::Array) {
        const auto address = value.address();
        if (!address) {
            throw ExprError("the array is not in memory", column);
        }
        return Value::ofInteger(m_types.pointerTo(plain->target()), *address);
    }
    if (plain->kind() == Type::Kind::Function) {
        return Value::ofInteger(m_types.pointerTo(value.type()), value.address().value_or(0) | 1u);
    }
    return value;
}

const Type* Converter::promotedType(const Value& value) const
{
    if (value.isBitField() && value.bitSize() < 32) {
        return m_int;
    }
    return promotedType(value.type());
}

const Type* Converter::promotedType(const Type* type) const
{
    const Type* plain = type->unqualified();
    if (plain->isFloat()) {
        return plain;
    }
    const std::size_t size = plain->size();
    if (size < 4) {
        return m_int;
    }
    if (size <= 4) {
        return plain->isSigned() ? m_int : m_unsigned;
    }
    return plain->isSigned() ? m_longLong : m_unsignedLongLong;
}

const Type* Converter::commonType(const Value& left, const Value& right) const
{
    return commonType(promotedType(left), promotedType(right));
}

const Type* Converter::commonType(const Type* left, const Type* right) const
{
    const Type* a = promotedType(left);
    const Type* b = promotedType(right);
    if (a->isFloat() || b->isFloat()) {
        const std::size_t size = std::max(a->isFloat() ? a->size() : 0, b->isFloat() ? b->size() : 0);
        return size > 4 ? m_double : m_float;
    }
    if (a->size() != b->size()) {
        return a->size() > b->size() ? a : b;
    }
    const bool isUnsigned = !a->isSigned() || !b->isSigned();
    if (a->size() > 4) {
        return isUnsigned ? m_unsignedLongLong : m_longLong;
    }
    return isUnsigned ? m_unsigned : m_int;
}

Value Converter::convert(const Value& original, const Type* to, std::optional<std::size_t> column) const
{
    const Type* target = to->unqualified();
    const Value value = target->kind() == Type::Kind::Array ? original : decay(original, column);
    const Type* from = value.plainType();
    auto refuse = [&]() {
        return ExprError("cannot convert '" + value.type()->name() + "' to '" + to->name() + "'", column);
    };
    switch (target->kind()) {
    case Type::Kind::Void:
        return Value::ofBytes(to, {});
    case Type::Kind::Struct:
    case Type::Kind::Union:
        if (!sameType(from, target)) {
            throw refuse();
        }
        return Value::ofBytes(to, value.bytes(m_target));
    case Type::Kind::Array: {
        if (from->kind() != Type::Kind::Array || from->target() == nullptr || target->target() == nullptr ||
            from->target()->size() != target->target()->size()) {
            throw refuse();
        }
        if (target->size() > Value::maxBytes) {
            throw refuse();
        }
        std::vector<std::uint8_t> bytes = value.bytes(m_target);
        bytes.resize(target->size(), 0);
        return Value::ofBytes(to, std::move(bytes));
    }
    case Type::Kind::Function:
        throw refuse();
    default:
        break;
    }
    if (isAggregate(from) || from->kind() == Type::Kind::Void || from->kind() == Type::Kind::Function) {
        throw refuse();
    }
    if (target->isFloat()) {
        if (from->kind() == Type::Kind::Pointer) {
            throw refuse();
        }
        return Value::ofFloating(to, value.floating(m_target));
    }
    if (target->kind() == Type::Kind::Pointer && from->isFloat()) {
        throw refuse();
    }
    if (target->encoding() == Type::Encoding::Bool) {
        const bool set = from->isFloat() ? value.floating(m_target) != 0 : value.integer(m_target) != 0;
        return Value::ofInteger(to, set ? 1 : 0);
    }
    if (from->isFloat()) {
        const double number = std::trunc(value.floating(m_target));
        if (std::isnan(number)) {
            return Value::ofInteger(to, 0);
        }
        if (number >= 9223372036854775808.0) {
            return Value::ofInteger(to, number >= 18446744073709551616.0 ? ~std::uint64_t(0)
                                                                           : static_cast<std::uint64_t>(number));
        }
        if (number < -9223372036854775808.0) {
            return Value::ofInteger(to, std::uint64_t(1) << 63);
        }
        return Value::ofInteger(to, static_cast<std::uint64_t>(static_cast<std::int64_t>(number)));
    }
    return Value::ofInteger(to, value.integer(m_target));
}

bool Converter::truth(const Value& original, std::optional<std::size_t> column) const
{
    const Value value = decay(original, column);
    const Type* plain = value.plainType();
    if (plain->isFloat()) {
        return value.floating(m_target) != 0;
    }
    if (plain->isInteger() || plain->kind() == Type::Kind::Pointer) {
        return value.integer(m_target) != 0;
    }
    throw ExprError("'" + value.type()->name() + "' is not a scalar", column);
}

} // namespace quillon::expr
