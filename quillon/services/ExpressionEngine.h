#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "services/ScalarType.h"

namespace quillon::services {

/// A value as expressions give and take it: kind and width, the bits in host order (in the low bytes), and the
/// text Quillon shows for it.
struct ExpressionValue {
    ScalarType type;
    std::uint64_t bits = 0;
    std::string text;
};

/// The C expression language as the debug service uses it: evaluation and assignment in the stopped target's
/// current scope, and breakpoint conditions. The service works without one; operations that need it then fail
/// as not available. Failures are exceptions whose text names what is wrong.
class ExpressionEngine {
public:
    virtual ~ExpressionEngine() = default;

    /// `flags` is the word of access and evaluate flags.
    virtual ExpressionValue evaluate(const std::string& expression, std::uint32_t flags) = 0;
    /// Assigns a typed value; returns the text of the new value.
    virtual std::string modify(const std::string& expression, const ExpressionValue& value, std::uint32_t flags) = 0;
    /// Assigns a value given as text in the target's terms; returns the text of the new value.
    virtual std::string modify(const std::string& expression, const std::string& value, std::uint32_t flags) = 0;
    /// Parses a condition once; the function is called at each pass of the breakpoint, on the target's run
    /// thread, and may read registers and memory. It throws when the condition cannot be evaluated there.
    virtual std::function<bool()> compileCondition(const std::string& condition) = 0;
};

} // namespace quillon::services
