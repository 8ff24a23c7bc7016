#pragma once

#include "expr/Value.h"

#include <optional>
#include <string>

namespace quillon::expr {

/// Names that an expression can use: one link of a ScopeChain. The services above add their own.
class Scope {
public:
    virtual ~Scope() = default;
    /// The object of the name; nothing if this scope has none. May throw ExprError for an object
    /// it has but cannot give (optimized out).
    virtual std::optional<Value> find(const std::string& name) const = 0;
};

} // namespace quillon::expr
