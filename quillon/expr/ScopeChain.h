#pragma once

#include "expr/Scope.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillon::debuginfo {
class DebugInfo;
}
namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// Scopes in the order names are looked up: the first that has a name wins.
class ScopeChain {
public:
    /// The chain of a stopped target: the function's locals and parameters in the frame
    /// (0: the innermost, 1: its caller, ...), its unit's statics, globals, functions and
    /// enumerators, then the core registers by plain name. Both must outlive the chain. Throws
    /// ExprError if there is no such frame.
    static ScopeChain forStop(const debuginfo::DebugInfo& debug, const target::Target& target, unsigned frame = 0);
    /// Globals, functions, enumerators and registers only.
    static ScopeChain forGlobals(const debuginfo::DebugInfo& debug, const target::Target& target);

    /// Looked up before the scopes already in the chain.
    void prepend(std::shared_ptr<const Scope> scope) { m_scopes.insert(m_scopes.begin(), std::move(scope)); }
    void append(std::shared_ptr<const Scope> scope) { m_scopes.push_back(std::move(scope)); }

    std::optional<Value> find(const std::string& name) const;

private:
    std::vector<std::shared_ptr<const Scope>> m_scopes;
};

} // namespace quillon::expr
