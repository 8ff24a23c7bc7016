#pragma once

#include "expr/Scope.h"

#include "debuginfo/TypeTable.h"

namespace quillon::expr {

/// The core registers by name (r0 to r12, sp, lr, pc, xpsr, ...; any case) as unsigned ints of
/// the innermost frame.
class RegisterScope : public Scope {
public:
    explicit RegisterScope(const debuginfo::TypeTable& types);

    std::optional<Value> find(const std::string& name) const override;

private:
    const debuginfo::Type* m_type;
};

} // namespace quillon::expr
