#pragma once

#include "expr/Scope.h"

#include "debuginfo/Type.h"

#include <cstdint>
#include <map>
#include <string>

namespace quillon::expr {

/// Objects named from outside the debug information, each of a type at a target address (or any
/// value, such as a parameter in a core register): the test service's locals, parameters, return
/// value and stub parameters.
class NamedObjectScope : public Scope {
public:
    /// Adds or replaces the object of the name.
    void add(const std::string& name, const debuginfo::Type* type, std::uint32_t address);
    void add(const std::string& name, const Value& value);
    bool remove(const std::string& name);
    void clear() { m_objects.clear(); }

    std::optional<Value> find(const std::string& name) const override;

private:
    std::map<std::string, Value> m_objects;
};

} // namespace quillon::expr
