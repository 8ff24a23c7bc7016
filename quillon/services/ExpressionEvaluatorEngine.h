#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "services/ExpressionEngine.h"
#include "services/SymbolIndex.h"
#include "target/Target.h"

namespace quillon::debuginfo {
class DebugInfo;
}

namespace quillon::services {

/// The C expression language over the downloaded programs: names resolve at the stopped core's pc in the locals of
/// its function, the statics of its unit, the globals and the core registers. The program whose debug information
/// covers the pc answers; elsewhere the first program with debug information, with its globals only.
///
/// Nothing of a program is kept between calls, so a download in between never leaves a stale reference.
class ExpressionEvaluatorEngine final : public ExpressionEngine {
public:
    /// Both must outlive the engine.
    ExpressionEvaluatorEngine(target::Target& target, const SymbolIndex& symbols);

    ExpressionValue evaluate(const std::string& expression, std::uint32_t flags) override;
    std::string modify(const std::string& expression, const ExpressionValue& value, std::uint32_t flags) override;
    std::string modify(const std::string& expression, const std::string& value, std::uint32_t flags) override;
    /// The text is checked once here; each pass evaluates it in the scope of the breakpoint's pc. A value that is
    /// not zero holds.
    std::function<bool()> compileCondition(const std::string& condition) override;

private:
    /// Runs `f(evaluator)` with an evaluator in the scope of the current pc.
    template <class F> auto inScope(F&& f) const;
    const debuginfo::DebugInfo& debugInfoAt(std::uint32_t pc) const;
    void requireStopped() const;
    bool holds(const std::string& condition) const;

    target::Target& m_target;
    const SymbolIndex& m_symbols;
};

} // namespace quillon::services
