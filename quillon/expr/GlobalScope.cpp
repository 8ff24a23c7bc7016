#include "expr/GlobalScope.h"

namespace quillon::expr {

std::optional<Value> GlobalScope::find(const std::string& name) const
{
    if (const debuginfo::Variable* variable = m_debug.findGlobal(name, m_unit)) {
        if (variable->address && variable->type != nullptr) {
            return Value::inMemory(variable->type, *variable->address);
        }
    }
    if (const debuginfo::Function* function = m_debug.findFunction(name, m_unit)) {
        if (function->type != nullptr) {
            return Value::inMemory(function->type, function->entry);
        }
    }
    if (const debuginfo::Type* type = m_debug.types().findEnumeratorType(name)) {
        return Value::ofInteger(type, static_cast<std::uint64_t>(type->findEnumerator(name)->value));
    }
    return std::nullopt;
}

} // namespace quillon::expr
