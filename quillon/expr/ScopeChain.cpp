#include "expr/ScopeChain.h"

#include "expr/FrameScope.h"
#include "expr/GlobalScope.h"
#include "expr/RegisterScope.h"

namespace quillon::expr {

ScopeChain ScopeChain::forStop(const debuginfo::DebugInfo& debug, const target::Target& target, unsigned frame)
{
    auto locals = std::make_shared<FrameScope>(debug, target, frame);
    std::optional<std::size_t> unit;
    if (locals->function() != nullptr) {
        unit = locals->function()->unit;
    }
    ScopeChain chain;
    chain.append(locals);
    chain.append(std::make_shared<GlobalScope>(debug, unit));
    chain.append(std::make_shared<RegisterScope>(debug.types()));
    return chain;
}

ScopeChain ScopeChain::forGlobals(const debuginfo::DebugInfo& debug, const target::Target&)
{
    ScopeChain chain;
    chain.append(std::make_shared<GlobalScope>(debug));
    chain.append(std::make_shared<RegisterScope>(debug.types()));
    return chain;
}

std::optional<Value> ScopeChain::find(const std::string& name) const
{
    for (const auto& scope : m_scopes) {
        if (auto value = scope->find(name)) {
            return value;
        }
    }
    return std::nullopt;
}

} // namespace quillon::expr
