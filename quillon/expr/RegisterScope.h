#pragma once

#include "expr/Scope.h"

#include "debuginfo/TypeTable.h"

namespace quillon::expr {

/// The core registers by name (r0 to r12, sp, lr, pc, xpsr, ...; any case) as unsigned ints of
/// the innermost frame.
class RegisterScope : public Scope {
public:
    /// `types` must outlive the scope.
    explicit RegisterScope(const debuginfo::TypeTable& types) : m_types(types) {}

    std::optional<Value> find(const std::string& name) const override;

private:
    const debuginfo::TypeTable& m_types;
};

} // namespace quillon::expr
