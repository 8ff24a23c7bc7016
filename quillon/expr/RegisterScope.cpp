#include "expr/RegisterScope.h"

#include "target/RegisterTable.h"

namespace quillon::expr {

std::optional<Value> RegisterScope::find(const std::string& name) const
{
    const auto reg = target::RegisterTable::find(name);
    if (!reg) {
        return std::nullopt;
    }
    Value value = Value::inRegister(m_types.find("unsigned int"), *reg);
    value.setLabel("register " + name);
    return value;
}

} // namespace quillon::expr
