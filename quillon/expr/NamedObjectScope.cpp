#include "expr/NamedObjectScope.h"

namespace quillon::expr {

void NamedObjectScope::add(const std::string& name, const debuginfo::Type* type, std::uint32_t address)
{
    add(name, Value::inMemory(type, address));
}

void NamedObjectScope::add(const std::string& name, const Value& value)
{
    m_objects.insert_or_assign(name, value);
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
    return found->second;
}

} // namespace quillon::expr
