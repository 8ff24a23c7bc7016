#include "expr/NamedObjectScope.h"

namespace quillon::expr {

void NamedObjectScope::add(const std::string& name, const debuginfo::Type* type, std::uint32_t address)
{
    m_objects[name] = Object{type, address};
}

bool NamedObjectScope::remove(const std::string& name)
{
    return m_objects.erase(name) != 0;
}

std::optional<Value> NamedObjectScope::find(const std::string& name) const
{
    auto found = m_objects.find(name);
    if (found == m_objects.end()) {
        return std::nullopt;
    }
    return Value::inMemory(found->second.type, found->second.address);
}

} // namespace quillon::expr
