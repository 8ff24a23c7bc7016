#include "expr/Evaluator.h"

#include "expr/ExprError.h"

#include "target/RegisterTable.h"
#include "target/Target.h"

#include <limits>

namespace quillon::expr {
namespace {

using debuginfo::Type;

bool isPointer(const Value& value)
{
    return value.plainType()->kind() == Type::Kind::Pointer;
}

bool isInteger(const Value& value)
{
    return value.plainType()->isInteger();
}

bool isArithmetic(const Value& value)
{
    return Converter::isArithmetic(value.plainType());
}

bool isAggregate(const Type* plain)
{
    return plain->kind() == Type::Kind::Struct || plain->kind() == Type::Kind::Union;
}

ExprError invalidOperands(const std::string& op, const Value& left, const Value& right, std::size_t column)
{
    return ExprError("invalid operands to '" + op + "' ('" + left.type()->name() + "' and '" + right.type()->name() +
                         "')",
                     column);
}

std::uint64_t littleEndian(const std::vector<std::uint8_t>& bytes, std::size_t offset, std::size_t size)
{
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < size && i < 8 && offset + i < bytes.size(); ++i) {
        bits |= std::uint64_t(bytes[offset + i]) << (8 * i);
    }
    return bits;
}

/// Restores a flag when a scope ends, also by an exception.
class FlagGuard {
public:
    FlagGuard(bool& flag, bool value) : m_flag(flag), m_saved(flag) { m_flag = value; }
    ~FlagGuard() { m_flag = m_saved; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

private:
    bool& m_flag;
    bool m_saved;
};

} // namespace

Evaluator::Evaluator(const Converter& converter, target::Target& target, const ScopeChain& scopes,
                     FunctionCaller* caller)
    : m_converter(converter), m_target(target), m_scopes(scopes), m_caller(caller)
{
}

Value Evaluator::evaluate(const Node& node)
{
    try {
        switch (node.kind) {
        case Node::Kind::Integer:
        case Node::Kind::Floating:
        case Node::Kind::Character:
        case Node::Kind::String:
            return literal(node);
        case Node::Kind::Name:
            return name(node);
        case Node::Kind::Register:
            return registerValue(node);
        case Node::Kind::Member:
            return member(node, evaluate(node.child(0)));
        case Node::Kind::Arrow:
            return arrow(node);
        case Node::Kind::Index:
            return index(node);
        case Node::Kind::Call:
            return call(node);
        case Node::Kind::Unary:
            return unary(node);
        case Node::Kind::PreIncrement:
            return increment(node, true);
        case Node::Kind::PostIncrement:
            return increment(node, false);
        case Node::Kind::Cast:
            return m_converter.convert(evaluate(node.child(0)), node.type, node.column());
        case Node::Kind::SizeofType:
        case Node::Kind::SizeofValue:
            return sizeOf(node);
        case Node::Kind::Binary:
            return binary(node.op, evaluate(node.child(0)), evaluate(node.child(1)), node.column());
        case Node::Kind::LogicalAnd: {
            const bool left = m_converter.truth(evaluate(node.child(0)), node.child(0).column());
            return truthValue(left && m_converter.truth(evaluate(node.child(1)), node.child(1).column()));
        }
        case Node::Kind::LogicalOr: {
            const bool left = m_converter.truth(evaluate(node.child(0)), node.child(0).column());
            return truthValue(left || m_converter.truth(evaluate(node.child(1)), node.child(1).column()));
        }
        case Node::Kind::Conditional:
            return conditional(node);
        case Node::Kind::Assign:
            return assign(node);
        }
    } catch (const ExprError& error) {
        if (!error.column()) {
            throw ExprError(error.problem(), node.column());
        }
        throw;
    }
    throw ExprError("unknown expression", node.column());
}

Value Evaluator::integerValue(const Type* type, std::uint64_t bits) const
{
    return Value::ofInteger(type, bits);
}

Value Evaluator::truthValue(bool value) const
{
    return Value::ofInteger(m_converter.intType(), value ? 1 : 0);
}

Value Evaluator::literal(const Node& node) const
{
    const Token& token = node.token;
    switch (node.kind) {
    case Node::Kind::Floating:
        return Value::ofFloating(token.isFloat ? m_converter.floatType() : m_converter.doubleType(), token.floating);
    case Node::Kind::Character:
        return integerValue(m_converter.intType(), token.integer);
    case Node::Kind::String: {
        std::vector<std::uint8_t> bytes(token.text.begin(), token.text.end());
        bytes.push_back(0);
        const Type* type = m_converter.types().arrayOf(m_converter.charType(), bytes.size());
        return Value::ofBytes(type, std::move(bytes));
    }
    default:
        break;
    }
    const std::uint64_t value = token.integer;
    const bool fitsInt = value <= std::uint64_t(std::numeric_limits<std::int32_t>::max());
    const bool fitsUnsigned = value <= std::uint64_t(std::numeric_limits<std::uint32_t>::max());
    const bool fitsLongLong = value <= std::uint64_t(std::numeric_limits<std::int64_t>::max());
    const Type* type = nullptr;
    if (token.longs < 2 && fitsInt && !token.isUnsigned) {
        type = m_converter.intType();
    } else if (token.longs < 2 && fitsUnsigned && (token.isUnsigned || !token.decimal)) {
        type = m_converter.unsignedType();
    } else if (fitsLongLong && !token.isUnsigned) {
        type = m_converter.longLongType();
    } else {
        type = m_converter.unsignedLongLongType();
    }
    return integerValue(type, value);
}

Value Evaluator::name(const Node& node)
{
    std::optional<Value> value = m_scopes.find(node.name);
    if (!value) {
        throw ExprError("no symbol '" + node.name + "' in the current scope", node.column());
    }
    if (value->label().empty()) {
        value->setLabel("'" + node.name + "'");
    }
    return *value;
}

Value Evaluator::registerValue(const Node& node)
{
    const auto reg = target::RegisterTable::find(node.name);
    if (!reg) {
        throw ExprError("no register '" + node.name + "'", node.column());
    }
    return Value::inRegister(m_converter.unsignedType(), *reg);
}

Value Evaluator::member(const Node& node, const Value& base)
{
    const Type* plain = base.plainType();
    if (!isAggregate(plain)) {
        throw ExprError("'.' on a non-struct ('" + base.type()->name() + "')", node.column());
    }
    const auto found = plain->findMember(node.name);
    if (!found) {
        throw ExprError("no member '" + node.name + "' in '" + base.type()->name() + "'", node.column());
    }
    const Type::Member& m = *found;
    if (const auto address = base.address()) {
        const std::uint32_t at = *address + static_cast<std::uint32_t>(m.offset);
        return m.isBitField() ? Value::bitField(m.type, at, m.bitOffset, m.bitSize) : Value::inMemory(m.type, at);
    }
    const std::vector<std::uint8_t>& bytes = base.bytes(m_target);
    if (m.isBitField()) {
        const unsigned shift = m.bitOffset % 8;
        std::uint64_t bits = littleEndian(bytes, m.offset + m.bitOffset / 8, (shift + m.bitSize + 7) / 8) >> shift;
        const std::uint64_t mask = m.bitSize >= 64 ? ~std::uint64_t(0) : (std::uint64_t(1) << m.bitSize) - 1;
        bits &= mask;
        if (m.type->isSigned() && (bits >> (m.bitSize - 1)) & 1) {
            bits |= ~mask;
        }
        return Value::ofInteger(m.type, bits);
    }
    const std::size_t size = m.type->size();
    std::vector<std::uint8_t> part(size, 0);
    for (std::size_t i = 0; i < size && m.offset + i < bytes.size(); ++i) {
        part[i] = bytes[m.offset + i];
    }
    return Value::ofBytes(m.type, std::move(part));
}

Value Evaluator::arrow(const Node& node)
{
    const Value base = m_converter.decay(evaluate(node.child(0)), node.column());
    if (!isPointer(base)) {
        throw ExprError("'->' on a non-pointer", node.column());
    }
    const Type* target = base.plainType()->target();
    if (target == nullptr || !isAggregate(target->unqualified())) {
        throw ExprError("'->' on a pointer to '" + (target ? target->name() : std::string("void")) +
                            "', not to a struct or union",
                        node.column());
    }
    return member(node, dereference(node, base));
}

std::uint64_t Evaluator::elementSize(const Value& pointer) const
{
    const Type* target = pointer.plainType()->target();
    if (target == nullptr || target->unqualified()->kind() == Type::Kind::Void || Converter::isFunction(target)) {
        return 1;
    }
    return target->size();
}

Value Evaluator::pointerOffset(const Value& pointer, std::int64_t count, std::size_t column) const
{
    const std::uint64_t size = elementSize(pointer);
    if (size == 0) {
        throw ExprError("arithmetic on a pointer to the incomplete type '" + pointer.plainType()->target()->name() + "'",
                        column);
    }
    const std::uint64_t address = pointer.integer(m_target) + static_cast<std::uint64_t>(count) * size;
    return Value::ofInteger(pointer.type(), address);
}

Value Evaluator::index(const Node& node)
{
    const Value base = evaluate(node.child(0));
    const Value position = evaluate(node.child(1));
    const Type* plain = base.plainType();
    if (plain->kind() == Type::Kind::Array && !base.address() && isInteger(position)) {
        // An array that is a value (no memory): take the element from its bytes.
        const std::int64_t i = static_cast<std::int64_t>(position.integer(m_target));
        const std::uint64_t size = plain->target()->size();
        if (i < 0 || !plain->count() || static_cast<std::uint64_t>(i) >= *plain->count()) {
            throw ExprError("index " + std::to_string(i) + " is outside '" + base.type()->name() + "'", node.column());
        }
        const std::vector<std::uint8_t>& bytes = base.bytes(m_target);
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(static_cast<std::uint64_t>(i) * size);
        return Value::ofBytes(plain->target(), std::vector<std::uint8_t>(first, first + static_cast<std::ptrdiff_t>(size)));
    }
    Value pointer = m_converter.decay(base, node.column());
    Value offset = m_converter.decay(position, node.column());
    if (!isPointer(pointer) && isPointer(offset)) {
        std::swap(pointer, offset);
    }
    if (!isPointer(pointer)) {
        throw ExprError("'[]' on a non-array ('" + base.type()->name() + "')", node.column());
    }
    if (!isInteger(offset)) {
        throw ExprError("array index is not an integer", node.child(1).column());
    }
    return dereference(node, pointerOffset(pointer, static_cast<std::int64_t>(offset.integer(m_target)), node.column()));
}

Value Evaluator::dereference(const Node& node, const Value& operand)
{
    if (!isPointer(operand)) {
        throw ExprError("'*' on a non-pointer", node.column());
    }
    const Type* target = operand.plainType()->target();
    if (target == nullptr || target->unqualified()->kind() == Type::Kind::Void) {
        throw ExprError("'*' on a void pointer", node.column());
    }
    std::uint64_t address = operand.integer(m_target);
    if (Converter::isFunction(target)) {
        address &= ~std::uint64_t(1);
    }
    return Value::inMemory(target, static_cast<std::uint32_t>(address));
}

Value Evaluator::addressOf(const Node& node, const Value& operand)
{
    if (Converter::isFunction(operand.type())) {
        return m_converter.decay(operand);
    }
    if (operand.isBitField()) {
        throw ExprError("cannot take the address of a bit field", node.column());
    }
    if (operand.reg()) {
        throw ExprError("cannot take the address of a register", node.column());
    }
    const auto address = operand.address();
    if (!address) {
        throw ExprError("'&' needs an lvalue", node.column());
    }
    return Value::ofInteger(m_converter.types().pointerTo(operand.type()), *address);
}

Value Evaluator::unary(const Node& node)
{
    const Value operand = evaluate(node.child(0));
    if (node.op == "&") {
        return addressOf(node, operand);
    }
    const Value value = m_converter.decay(operand, node.column());
    if (node.op == "*") {
        return dereference(node, value);
    }
    if (node.op == "!") {
        return truthValue(!m_converter.truth(value, node.column()));
    }
    const bool integer = isInteger(value);
    if (!(integer || (node.op != "~" && isArithmetic(value)))) {
        throw ExprError("invalid operand to '" + node.op + "' ('" + value.type()->name() + "')", node.column());
    }
    const Type* type = m_converter.promotedType(value);
    if (!integer) {
        const double number = value.floating(m_target);
        return Value::ofFloating(type, node.op == "-" ? -number : number);
    }
    const std::uint64_t bits = m_converter.convert(value, type).integer(m_target);
    if (node.op == "-") {
        return integerValue(type, 0 - bits);
    }
    if (node.op == "~") {
        return integerValue(type, ~bits);
    }
    return integerValue(type, bits);
}

Value Evaluator::increment(const Node& node, bool prefix)
{
    const Value operand = evaluate(node.child(0));
    if (!operand.isLvalue()) {
        throw ExprError("'" + node.op + "' needs an lvalue", node.column());
    }
    const Value old = Value::ofBytes(operand.type(), operand.bytes(m_target));
    const Value one = integerValue(m_converter.intType(), 1);
    store(operand, binary(node.op == "++" ? "+" : "-", old, one, node.column()), node.column());
    return prefix ? operand : old;
}

Value Evaluator::sizeOf(const Node& node)
{
    const Type* type = node.type;
    if (node.kind == Node::Kind::SizeofValue) {
        FlagGuard guard(m_sideEffects, false);
        const Value value = evaluate(node.child(0));
        if (value.isBitField()) {
            throw ExprError("sizeof of a bit field", node.column());
        }
        type = value.type();
    }
    if (Converter::isFunction(type)) {
        throw ExprError("sizeof of a function", node.column());
    }
    const Type* plain = type->unqualified();
    if (type->size() == 0 && plain->kind() != Type::Kind::Void) {
        throw ExprError("sizeof of the incomplete type '" + type->name() + "'", node.column());
    }
    return integerValue(m_converter.unsignedType(), plain->kind() == Type::Kind::Void ? 1 : type->size());
}

Value Evaluator::binary(const std::string& op, const Value& left, const Value& right, std::size_t column)
{
    if (op == "+" || op == "-") {
        return additive(op, left, right, column);
    }
    if (op == "<<" || op == ">>") {
        return shift(op, left, right, column);
    }
    if (op == "==" || op == "!=" || op == "<" || op == ">" || op == "<=" || op == ">=") {
        return comparison(op, left, right, column);
    }
    return arithmetic(op, left, right, column);
}

Value Evaluator::additive(const std::string& op, const Value& leftValue, const Value& rightValue, std::size_t column)
{
    const Value left = m_converter.decay(leftValue, column);
    const Value right = m_converter.decay(rightValue, column);
    const bool leftPointer = isPointer(left);
    const bool rightPointer = isPointer(right);
    if (!leftPointer && !rightPointer) {
        return arithmetic(op, left, right, column);
    }
    auto count = [&](const Value& value) { return static_cast<std::int64_t>(value.integer(m_target)); };
    if (op == "+") {
        if (leftPointer && isInteger(right)) {
            return pointerOffset(left, count(right), column);
        }
        if (rightPointer && isInteger(left)) {
            return pointerOffset(right, count(left), column);
        }
        throw invalidOperands(op, left, right, column);
    }
    if (leftPointer && isInteger(right)) {
        return pointerOffset(left, -count(right), column);
    }
    if (leftPointer && rightPointer) {
        const std::uint64_t size = elementSize(left);
        if (size != elementSize(right) || size == 0) {
            throw invalidOperands(op, left, right, column);
        }
        const auto difference = static_cast<std::int32_t>(static_cast<std::uint32_t>(left.integer(m_target)) -
                                                          static_cast<std::uint32_t>(right.integer(m_target)));
        return integerValue(m_converter.intType(), static_cast<std::uint64_t>(static_cast<std::int64_t>(difference) /
                                                                             static_cast<std::int64_t>(size)));
    }
    throw invalidOperands(op, left, right, column);
}

Value Evaluator::arithmetic(const std::string& op, const Value& leftValue, const Value& rightValue, std::size_t column)
{
    const Value left = m_converter.decay(leftValue, column);
    const Value right = m_converter.decay(rightValue, column);
    const bool integersOnly = op == "%" || op == "&" || op == "|" || op == "^";
    if (!isArithmetic(left) || !isArithmetic(right) || (integersOnly && !(isInteger(left) && isInteger(right)))) {
        throw invalidOperands(op, left, right, column);
    }
    const Type* type = m_converter.commonType(left, right);
    if (type->isFloat()) {
        const double a = left.floating(m_target);
        const double b = right.floating(m_target);
        const double result = op == "+" ? a + b : op == "-" ? a - b : op == "*" ? a * b : a / b;
        return Value::ofFloating(type, result);
    }
    const std::uint64_t a = m_converter.convert(left, type).integer(m_target);
    const std::uint64_t b = m_converter.convert(right, type).integer(m_target);
    const bool isSigned = type->isSigned();
    std::uint64_t result = 0;
    if (op == "+") {
        result = a + b;
    } else if (op == "-") {
        result = a - b;
    } else if (op == "*") {
        result = a * b;
    } else if (op == "&") {
        result = a & b;
    } else if (op == "|") {
        result = a | b;
    } else if (op == "^") {
        result = a ^ b;
    } else {
        if (b == 0) {
            throw ExprError("division by zero", column);
        }
        const auto sa = static_cast<std::int64_t>(a);
        const auto sb = static_cast<std::int64_t>(b);
        if (isSigned && sb == -1) {
            result = op == "/" ? 0 - a : 0;
        } else if (op == "/") {
            result = isSigned ? static_cast<std::uint64_t>(sa / sb) : a / b;
        } else {
            result = isSigned ? static_cast<std::uint64_t>(sa % sb) : a % b;
        }
    }
    return integerValue(type, result);
}

Value Evaluator::shift(const std::string& op, const Value& leftValue, const Value& rightValue, std::size_t column)
{
    const Value left = m_converter.decay(leftValue, column);
    const Value right = m_converter.decay(rightValue, column);
    if (!isInteger(left) || !isInteger(right)) {
        throw invalidOperands(op, left, right, column);
    }
    const Type* type = m_converter.promotedType(left);
    const std::uint64_t a = m_converter.convert(left, type).integer(m_target);
    const auto count = static_cast<std::int64_t>(right.integer(m_target));
    const auto width = static_cast<std::int64_t>(type->size() * 8);
    const bool negative = type->isSigned() && static_cast<std::int64_t>(a) < 0;
    if (count < 0 || count >= width) {
        return integerValue(type, op == ">>" && negative ? ~std::uint64_t(0) : 0);
    }
    if (op == "<<") {
        return integerValue(type, a << count);
    }
    if (type->isSigned()) {
        return integerValue(type, static_cast<std::uint64_t>(static_cast<std::int64_t>(a) >> count));
    }
    const std::uint64_t mask = width >= 64 ? ~std::uint64_t(0) : (std::uint64_t(1) << width) - 1;
    return integerValue(type, (a & mask) >> count);
}

Value Evaluator::comparison(const std::string& op, const Value& leftValue, const Value& rightValue, std::size_t column)
{
    const Value left = m_converter.decay(leftValue, column);
    const Value right = m_converter.decay(rightValue, column);
    int order = 0;
    if (isPointer(left) || isPointer(right)) {
        if (!(isPointer(left) || isInteger(left)) || !(isPointer(right) || isInteger(right))) {
            throw invalidOperands(op, left, right, column);
        }
        const auto a = static_cast<std::uint32_t>(left.integer(m_target));
        const auto b = static_cast<std::uint32_t>(right.integer(m_target));
        order = a < b ? -1 : a > b ? 1 : 0;
    } else {
        if (!isArithmetic(left) || !isArithmetic(right)) {
            throw invalidOperands(op, left, right, column);
        }
        const Type* type = m_converter.commonType(left, right);
        if (type->isFloat()) {
            const double a = left.floating(m_target);
            const double b = right.floating(m_target);
            if (a != a || b != b) {
                return truthValue(op == "!=");
            }
            order = a < b ? -1 : a > b ? 1 : 0;
        } else {
            const std::uint64_t a = m_converter.convert(left, type).integer(m_target);
            const std::uint64_t b = m_converter.convert(right, type).integer(m_target);
            if (type->isSigned()) {
                const auto sa = static_cast<std::int64_t>(a);
                const auto sb = static_cast<std::int64_t>(b);
                order = sa < sb ? -1 : sa > sb ? 1 : 0;
            } else {
                order = a < b ? -1 : a > b ? 1 : 0;
            }
        }
    }
    const bool result = op == "==" ? order == 0
                        : op == "!=" ? order != 0
                        : op == "<"  ? order < 0
                        : op == ">"  ? order > 0
                        : op == "<=" ? order <= 0
                                     : order >= 0;
    return truthValue(result);
}

Value Evaluator::conditional(const Node& node)
{
    const bool condition = m_converter.truth(evaluate(node.child(0)), node.child(0).column());
    const Value chosen = m_converter.decay(evaluate(node.child(condition ? 1 : 2)), node.column());
    // Arithmetic operands meet in their common type, as if both were evaluated.
    const Type* other = staticType(node.child(condition ? 2 : 1));
    if (other != nullptr && isArithmetic(chosen) && Converter::isArithmetic(other->unqualified())) {
        return m_converter.convert(chosen, m_converter.commonType(m_converter.promotedType(chosen), other));
    }
    return chosen;
}

const Type* Evaluator::staticType(const Node& node) const
{
    auto elementOf = [](const Type* type) -> const Type* {
        if (type == nullptr) {
            return nullptr;
        }
        const Type* plain = type->unqualified();
        const bool indirect = plain->kind() == Type::Kind::Pointer || plain->kind() == Type::Kind::Array;
        return indirect ? plain->target() : nullptr;
    };
    auto memberOf = [](const Type* type, const std::string& name) -> const Type* {
        if (type == nullptr || !isAggregate(type->unqualified())) {
            return nullptr;
        }
        const auto member = type->unqualified()->findMember(name);
        return member ? member->type : nullptr;
    };
    try {
        switch (node.kind) {
        case Node::Kind::Integer:
        case Node::Kind::Floating:
        case Node::Kind::Character:
            return literal(node).type();
        case Node::Kind::Name: {
            const auto value = m_scopes.find(node.name);
            return value ? value->type() : nullptr;
        }
        case Node::Kind::Register:
            return m_converter.unsignedType();
        case Node::Kind::Member:
            return memberOf(staticType(node.child(0)), node.name);
        case Node::Kind::Arrow:
            return memberOf(elementOf(staticType(node.child(0))), node.name);
        case Node::Kind::Index:
            return elementOf(staticType(node.child(0)));
        case Node::Kind::Call: {
            const Type* callee = staticType(node.child(0));
            if (callee != nullptr && !Converter::isFunction(callee)) {
                callee = elementOf(callee);
            }
            return callee != nullptr && Converter::isFunction(callee) ? callee->unqualified()->target() : nullptr;
        }
        case Node::Kind::Unary: {
            const Type* operand = staticType(node.child(0));
            if (operand == nullptr || node.op == "&") {
                return nullptr;
            }
            if (node.op == "*") {
                return elementOf(operand);
            }
            if (node.op == "!") {
                return m_converter.intType();
            }
            return Converter::isArithmetic(operand->unqualified()) ? m_converter.promotedType(operand) : nullptr;
        }
        case Node::Kind::PreIncrement:
        case Node::Kind::PostIncrement:
        case Node::Kind::Assign:
            return staticType(node.child(0));
        case Node::Kind::Cast:
            return node.type;
        case Node::Kind::SizeofType:
        case Node::Kind::SizeofValue:
            return m_converter.unsignedType();
        case Node::Kind::LogicalAnd:
        case Node::Kind::LogicalOr:
            return m_converter.intType();
        case Node::Kind::Binary:
            return staticBinaryType(node);
        default:
            return nullptr;
        }
    } catch (const ExprError&) {
        return nullptr;
    }
}

const Type* Evaluator::staticBinaryType(const Node& node) const
{
    const std::string& op = node.op;
    if (op == "==" || op == "!=" || op == "<" || op == ">" || op == "<=" || op == ">=") {
        return m_converter.intType();
    }
    const Type* left = staticType(node.child(0));
    const Type* right = staticType(node.child(1));
    if (left == nullptr || right == nullptr) {
        return nullptr;
    }
    const bool arithmetic = Converter::isArithmetic(left->unqualified()) && Converter::isArithmetic(right->unqualified());
    if (op == "<<" || op == ">>") {
        return arithmetic ? m_converter.promotedType(left) : nullptr;
    }
    return arithmetic ? m_converter.commonType(left, right) : nullptr;
}

void Evaluator::store(const Value& target, const Value& value, std::size_t column)
{
    if (!target.isLvalue()) {
        throw ExprError("not an lvalue", column);
    }
    if (Converter::isFunction(target.type())) {
        throw ExprError("cannot assign to a function", column);
    }
    const Value converted = m_converter.convert(value, target.type(), column);
    if (m_sideEffects) {
        target.store(m_target, converted.bytes(m_target));
    }
}

Value Evaluator::assign(const Node& node)
{
    const Value target = evaluate(node.child(0));
    if (!target.isLvalue()) {
        throw ExprError("not an lvalue", node.child(0).column());
    }
    const Value right = evaluate(node.child(1));
    if (node.op == "=") {
        store(target, right, node.column());
    } else {
        const std::string op = node.op.substr(0, node.op.size() - 1);
        store(target, binary(op, target, right, node.column()), node.column());
    }
    return target;
}

Value Evaluator::assign(const Node& node, const Value& value)
{
    try {
        const Value target = evaluate(node);
        if (!target.isLvalue()) {
            throw ExprError("not an lvalue", node.column());
        }
        store(target, value, node.column());
        return target;
    } catch (const ExprError& error) {
        if (!error.column()) {
            throw ExprError(error.problem(), node.column());
        }
        throw;
    }
}

Value Evaluator::call(const Node& node)
{
    const Value callee = evaluate(node.child(0));
    const std::string name = node.child(0).kind == Node::Kind::Name ? node.child(0).name : "the function";
    std::uint32_t entry = 0;
    const Type* type = nullptr;
    if (Converter::isFunction(callee.type()) && callee.address()) {
        entry = *callee.address();
        type = callee.type();
    } else if (isPointer(callee) && callee.plainType()->target() && Converter::isFunction(callee.plainType()->target())) {
        entry = static_cast<std::uint32_t>(callee.integer(m_target));
        type = callee.plainType()->target();
    } else {
        throw ExprError("'" + callee.type()->name() + "' is not a function", node.column());
    }
    std::vector<Value> arguments;
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        arguments.push_back(evaluate(node.child(i)));
    }
    const Type* returnType = type->unqualified()->target();
    if (!m_sideEffects) {
        if (returnType == nullptr) {
            return Value::ofBytes(m_converter.types().voidType(), {});
        }
        return Value::ofBytes(returnType, std::vector<std::uint8_t>(returnType->size(), 0));
    }
    if (m_caller == nullptr) {
        throw ExprError("cannot call '" + name + "' here", node.column());
    }
    return m_caller->call(entry, type, arguments, name);
}

} // namespace quillon::expr
