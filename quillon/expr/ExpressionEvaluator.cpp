#include "expr/ExpressionEvaluator.h"

#include "expr/Evaluator.h"
#include "expr/ExprError.h"

#include "debuginfo/DebugInfoError.h"
#include "target/TargetError.h"

namespace quillon::expr {
namespace {

/// Runs f; failures of the layers below become ExprErrors with their text.
template <class F>
auto guarded(F&& f)
{
    try {
        return f();
    } catch (const target::TargetError& error) {
        throw ExprError(error.what());
    } catch (const debuginfo::DebugInfoError& error) {
        throw ExprError(error.what());
    }
}

} // namespace

ExpressionEvaluator::ExpressionEvaluator(const debuginfo::DebugInfo& debug, target::Target& target,
                                         const ScopeChain& scopes, FunctionCaller::Options callOptions)
    : m_debug(debug), m_target(target), m_scopes(&scopes), m_types(debug.types()),
      m_converter(debug.types(), target), m_caller(m_converter, target, callOptions), m_formatter(debug, target)
{
}

ParsedExpression ExpressionEvaluator::parse(const std::string& text) const
{
    Parser parser(m_types);
    return parser.parse(text);
}

EvaluationResult ExpressionEvaluator::result(const Value& value, const std::string& displayFormat) const
{
    EvaluationResult result;
    result.text = m_formatter.format(value, displayFormat);
    result.scalar = Scalar::of(value, m_target);
    result.typeName = value.type()->name();
    result.byteSize = value.type()->size();
    result.kind = value.plainType()->kind();
    return result;
}

EvaluationResult ExpressionEvaluator::evaluate(const std::string& expression)
{
    return guarded([&] {
        const ParsedExpression parsed = parse(expression);
        if (!parsed.format.empty() && !ValueFormatter::isDisplayFormat(parsed.format)) {
            throw ExprError("unknown display format '" + parsed.format + "'");
        }
        Evaluator evaluator(m_converter, m_target, *m_scopes, &m_caller);
        const Value value = evaluator.evaluate(*parsed.root);
        load(value, *parsed.root);
        return result(value, parsed.format);
    });
}

void ExpressionEvaluator::load(const Value& value, const Node& root) const
{
    const debuginfo::Type::Kind kind = value.plainType()->kind();
    if (kind == debuginfo::Type::Kind::Void || kind == debuginfo::Type::Kind::Function) {
        return;
    }
    try {
        value.bytes(m_target);
    } catch (const ExprError& error) {
        throw ExprError(error.problem(), error.column() ? error.column() : std::optional<std::size_t>(root.column()));
    }
}

Value ExpressionEvaluator::value(const std::string& expression)
{
    return guarded([&] {
        const ParsedExpression parsed = parse(expression);
        if (!parsed.format.empty()) {
            throw ExprError("a display format has no place here");
        }
        Evaluator evaluator(m_converter, m_target, *m_scopes, &m_caller);
        return evaluator.evaluate(*parsed.root);
    });
}

EvaluationResult ExpressionEvaluator::modify(const std::string& lvalue, const std::string& value)
{
    return guarded([&] {
        const ParsedExpression target = parse(lvalue);
        const Value assigned = this->value(value);
        Evaluator evaluator(m_converter, m_target, *m_scopes, &m_caller);
        return result(evaluator.assign(*target.root, assigned), target.format);
    });
}

EvaluationResult ExpressionEvaluator::modify(const std::string& lvalue, const Scalar& value)
{
    return guarded([&] {
        const ParsedExpression target = parse(lvalue);
        const Value assigned = value.toValue(m_debug.types());
        Evaluator evaluator(m_converter, m_target, *m_scopes, &m_caller);
        return result(evaluator.assign(*target.root, assigned), target.format);
    });
}

const debuginfo::Type* ExpressionEvaluator::parseType(const std::string& text) const
{
    return m_types.parse(text);
}

} // namespace quillon::expr
