#pragma once

#include "expr/Converter.h"
#include "expr/FunctionCaller.h"
#include "expr/Node.h"
#include "expr/ScopeChain.h"
#include "expr/Value.h"

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// Evaluates a parsed expression over the scopes: C's operators with its conversions, member and
/// index access, casts, sizeof, assignments (written to the target at once) and calls of target
/// functions (run on the target by the function caller; none without one).
class Evaluator {
public:
    /// All must outlive the evaluator; `caller` may be null.
    Evaluator(const Converter& converter, target::Target& target, const ScopeChain& scopes, FunctionCaller* caller);

    Value evaluate(const Node& node);
    /// Assigns a value to the lvalue of the node, converted to its type; the lvalue is the result.
    Value assign(const Node& target, const Value& value);

private:
    Value name(const Node& node);
    Value registerValue(const Node& node);
    Value literal(const Node& node) const;
    Value member(const Node& node, const Value& base);
    Value arrow(const Node& node);
    Value index(const Node& node);
    Value call(const Node& node);
    Value unary(const Node& node);
    Value addressOf(const Node& node, const Value& operand);
    Value dereference(const Node& node, const Value& operand);
    Value increment(const Node& node, bool prefix);
    Value sizeOf(const Node& node);
    Value binary(const std::string& op, const Value& left, const Value& right, std::size_t column);
    Value additive(const std::string& op, const Value& left, const Value& right, std::size_t column);
    Value comparison(const std::string& op, const Value& left, const Value& right, std::size_t column);
    Value arithmetic(const std::string& op, const Value& left, const Value& right, std::size_t column);
    Value shift(const std::string& op, const Value& left, const Value& right, std::size_t column);
    Value conditional(const Node& node);
    /// The type of an expression without evaluating it; nullptr where it cannot be told so.
    const debuginfo::Type* staticType(const Node& node) const;
    const debuginfo::Type* staticBinaryType(const Node& node) const;
    Value assign(const Node& node);
    void store(const Value& target, const Value& value, std::size_t column);

    Value integerValue(const debuginfo::Type* type, std::uint64_t bits) const;
    Value truthValue(bool value) const;
    Value pointerOffset(const Value& pointer, std::int64_t count, std::size_t column) const;
    std::uint64_t elementSize(const Value& pointer) const;

    const Converter& m_converter;
    target::Target& m_target;
    const ScopeChain& m_scopes;
    FunctionCaller* m_caller;
    bool m_sideEffects = true; ///< false inside sizeof: no writes, no calls
};

} // namespace quillon::expr
