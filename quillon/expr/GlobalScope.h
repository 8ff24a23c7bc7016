#pragma once

#include "expr/Scope.h"

#include "debuginfo/DebugInfo.h"

#include <cstddef>
#include <optional>

namespace quillon::expr {

/// Statics of a unit, then globals, functions (a function designator at its entry) and enumerators
/// (constants of their enum type).
class GlobalScope : public Scope {
public:
    /// `unit`: whose statics come first. `debug` must outlive the scope.
    explicit GlobalScope(const debuginfo::DebugInfo& debug, std::optional<std::size_t> unit = std::nullopt)
        : m_debug(debug), m_unit(unit)
    {
    }

    std::optional<Value> find(const std::string& name) const override;

private:
    const debuginfo::DebugInfo& m_debug;
    std::optional<std::size_t> m_unit;
};

} // namespace quillon::expr
