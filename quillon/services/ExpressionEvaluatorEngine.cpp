#include "services/ExpressionEvaluatorEngine.h"

#include <algorithm>

#include "expr/ExprError.h"
#include "expr/ExpressionEvaluator.h"
#include "expr/Parser.h"
#include "expr/ScopeChain.h"
#include "expr/TypeTextParser.h"
#include "services/ServiceError.h"

namespace quillon::services {

namespace {

ExpressionValue toExpressionValue(const expr::EvaluationResult& result)
{
    ExpressionValue value;
    value.type.code = static_cast<ScalarType::Code>(result.scalar.code);
    value.type.bits = result.scalar.bitSize;
    if (result.scalar.code == expr::Scalar::Code::Compound) {
        value.type.bits = unsigned(std::min<std::uint64_t>(result.byteSize * 8, 255));
    }
    value.bits = result.scalar.bits;
    value.text = result.text;
    return value;
}

expr::Scalar toScalar(const ExpressionValue& value)
{
    expr::Scalar scalar;
    scalar.code = static_cast<expr::Scalar::Code>(value.type.code);
    scalar.bitSize = static_cast<std::uint8_t>(value.type.bits);
    scalar.bits = value.bits;
    return scalar;
}

expr::ScopeChain scopesAt(const debuginfo::DebugInfo& debug, const target::Target& target)
{
    if (debug.functionAt(target.pc()) == nullptr) {
        return expr::ScopeChain::forGlobals(debug, target);
    }
    return expr::ScopeChain::forStop(debug, target);
}

} // namespace

ExpressionEvaluatorEngine::ExpressionEvaluatorEngine(target::Target& target, const SymbolIndex& symbols)
    : m_target(target), m_symbols(symbols)
{
}

const debuginfo::DebugInfo& ExpressionEvaluatorEngine::debugInfoAt(std::uint32_t pc) const
{
    const debuginfo::DebugInfo* first = nullptr;
    for (const Program& program : m_symbols.programs()) {
        const debuginfo::DebugInfo* debug = program.debugInfo();
        if (debug == nullptr) {
            continue;
        }
        if (debug->functionAt(pc) != nullptr) {
            return *debug;
        }
        if (first == nullptr) {
            first = debug;
        }
    }
    if (first == nullptr) {
        throw ServiceError(ServiceError::Kind::NotAvailable, "no downloaded program has debug information");
    }
    return *first;
}

void ExpressionEvaluatorEngine::requireStopped() const
{
    if (m_target.isRunning()) {
        throw ServiceError(ServiceError::Kind::Running, "the target is running");
    }
}

template <class F> auto ExpressionEvaluatorEngine::inScope(F&& f) const
{
    const debuginfo::DebugInfo& debug = debugInfoAt(m_target.pc());
    const expr::ScopeChain scopes = scopesAt(debug, m_target);
    expr::ExpressionEvaluator evaluator(debug, m_target, scopes);
    return f(evaluator);
}

ExpressionValue ExpressionEvaluatorEngine::evaluate(const std::string& expression, std::uint32_t)
{
    requireStopped();
    return inScope([&](expr::ExpressionEvaluator& evaluator) {
        return toExpressionValue(evaluator.evaluate(expression));
    });
}

std::string ExpressionEvaluatorEngine::modify(const std::string& expression, const ExpressionValue& value,
                                              std::uint32_t)
{
    requireStopped();
    return inScope([&](expr::ExpressionEvaluator& evaluator) {
        return evaluator.modify(expression, toScalar(value)).text;
    });
}

std::string ExpressionEvaluatorEngine::modify(const std::string& expression, const std::string& value,
                                              std::uint32_t)
{
    requireStopped();
    return inScope([&](expr::ExpressionEvaluator& evaluator) { return evaluator.modify(expression, value).text; });
}

std::function<bool()> ExpressionEvaluatorEngine::compileCondition(const std::string& condition)
{
    const debuginfo::DebugInfo& debug = debugInfoAt(m_target.pc());
    expr::TypeTextParser types(debug.types());
    expr::Parser parser(types);
    if (!parser.parse(condition).format.empty()) {
        throw expr::ExprError("a condition takes no display format");
    }
    return [this, condition] { return holds(condition); };
}

bool ExpressionEvaluatorEngine::holds(const std::string& condition) const
{
    return inScope([&](expr::ExpressionEvaluator& evaluator) {
        const expr::Value value = evaluator.value(condition);
        const expr::Scalar scalar = expr::Scalar::of(value, m_target);
        if (scalar.code == expr::Scalar::Code::Compound || scalar.code == expr::Scalar::Code::Undefined) {
            throw expr::ExprError("the condition '" + condition + "' has no scalar value");
        }
        if (scalar.code == expr::Scalar::Code::Float) {
            const std::uint64_t magnitude = scalar.bitSize == 32 ? (scalar.bits & 0x7FFFFFFFu)
                                                                 : (scalar.bits & 0x7FFFFFFFFFFFFFFFull);
            return magnitude != 0;
        }
        return scalar.bits != 0;
    });
}

} // namespace quillon::services
