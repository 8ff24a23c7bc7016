#include "debuginfo/Function.h"

#include <algorithm>

namespace quillon::debuginfo {

namespace {

// Appends the variables of the scopes that hold pc, innermost first.
void collect(const Scope& scope, std::uint32_t pc, std::vector<const Variable*>& out)
{
    for (const Scope& child : scope.children) {
        if (child.contains(pc)) {
            collect(child, pc, out);
        }
    }
    for (const Variable& variable : scope.variables) {
        out.push_back(&variable);
    }
}

} // namespace

bool Function::contains(std::uint32_t pc) const
{
    return std::any_of(ranges.begin(), ranges.end(), [pc](const AddressRange& r) { return r.contains(pc); });
}

AddressRange Function::extent() const
{
    AddressRange extent{entry, entry};
    for (const AddressRange& range : ranges) {
        extent.low = std::min(extent.low, range.low);
        extent.high = std::max(extent.high, range.high);
    }
    return extent;
}

const Variable* Function::findParameter(const std::string& name) const
{
    for (const Variable& parameter : parameters) {
        if (parameter.name == name) {
            return &parameter;
        }
    }
    return nullptr;
}

std::vector<const Variable*> Function::visibleAt(std::uint32_t pc) const
{
    std::vector<const Variable*> visible;
    collect(body, pc, visible);
    for (const Variable& parameter : parameters) {
        visible.push_back(&parameter);
    }
    return visible;
}

const Variable* Function::findVisible(const std::string& name, std::uint32_t pc) const
{
    for (const Variable* variable : visibleAt(pc)) {
        if (variable->name == name) {
            return variable;
        }
    }
    return nullptr;
}

} // namespace quillon::debuginfo
