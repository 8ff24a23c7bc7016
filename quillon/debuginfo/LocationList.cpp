#include "debuginfo/LocationList.h"

#include <limits>

namespace quillon::debuginfo {

LocationList LocationList::always(LocationExpression expression)
{
    LocationList list;
    list.add(Entry{0, std::numeric_limits<std::uint64_t>::max(), std::move(expression)});
    return list;
}

bool LocationList::isSingle() const
{
    return m_entries.size() == 1 && m_entries.front().low == 0 &&
           m_entries.front().high == std::numeric_limits<std::uint64_t>::max();
}

const LocationExpression* LocationList::at(std::uint32_t pc) const
{
    for (const Entry& entry : m_entries) {
        if (pc >= entry.low && pc < entry.high) {
            return &entry.expression;
        }
    }
    return nullptr;
}

} // namespace quillon::debuginfo
