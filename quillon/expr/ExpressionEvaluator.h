#pragma once

#include "expr/Converter.h"
#include "expr/EvaluationResult.h"
#include "expr/FunctionCaller.h"
#include "expr/Parser.h"
#include "expr/Scalar.h"
#include "expr/ScopeChain.h"
#include "expr/TypeTextParser.h"
#include "expr/Value.h"
#include "expr/ValueFormatter.h"

#include "debuginfo/DebugInfo.h"

#include <string>

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// The expression language of a stopped target: evaluates C expression texts over a scope chain,
/// assigns values, parses type texts. Every failure is an ExprError.
class ExpressionEvaluator {
public:
    /// All must outlive the evaluator (the scopes until others are set). The target must be stopped
    /// while it is used.
    ExpressionEvaluator(const debuginfo::DebugInfo& debug, target::Target& target, const ScopeChain& scopes,
                        FunctionCaller::Options callOptions = {});

    /// The scopes names resolve in from now on (after the target stopped elsewhere); they must
    /// outlive their use. One evaluator can so serve one target and its debug information for long.
    void setScopes(const ScopeChain& scopes) { m_scopes = &scopes; }

    /// The expression's value as text (a display format behind a comma applies), scalar and type.
    EvaluationResult evaluate(const std::string& expression);
    /// The typed value of an expression without a display format.
    Value value(const std::string& expression);
    /// Assigns the value of the expression `value` (in the target's terms: `3`, `'a'`, `x + 1`)
    /// to the lvalue `lvalue`; the result is the lvalue's new value.
    EvaluationResult modify(const std::string& lvalue, const std::string& value);
    /// Assigns a scalar, converted to the lvalue's type.
    EvaluationResult modify(const std::string& lvalue, const Scalar& value);

    /// A C type text: "int", "char[16]", "struct point", "ring_t *".
    const debuginfo::Type* parseType(const std::string& text) const;
    /// The result of a value, with a display format or none.
    EvaluationResult result(const Value& value, const std::string& displayFormat = "") const;

    const Converter& converter() const { return m_converter; }
    FunctionCaller& caller() { return m_caller; }

private:
    ParsedExpression parse(const std::string& text) const;
    /// Reads an lvalue's bytes, so that unreadable memory is told with the expression's column.
    void load(const Value& value, const Node& root) const;

    const debuginfo::DebugInfo& m_debug;
    target::Target& m_target;
    const ScopeChain* m_scopes;
    TypeTextParser m_types;
    Converter m_converter;
    FunctionCaller m_caller;
    ValueFormatter m_formatter;
};

} // namespace quillon::expr
