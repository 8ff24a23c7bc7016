#include "StrStrMapIterator.h"

#include <iterator>

#include "IndexOutOfBoundsException.h"

namespace kestrix {

StrStrMapIterator::StrStrMapIterator(const StrStrMap& map) : m_current(map.begin()), m_end(map.end())
{
}

bool StrStrMapIterator::isValid() const
{
    return m_current != m_end;
}

// Reading or moving past the end is refused rather than left undefined.
StrStrMap::const_iterator StrStrMapIterator::current() const
{
    if (!isValid()) {
        throw IndexOutOfBoundsException(KX_POS, "Map iterator is at the end!");
    }
    return m_current;
}

const std::string& StrStrMapIterator::key() const
{
    return current()->first;
}

const std::string& StrStrMapIterator::value() const
{
    return current()->second;
}

void StrStrMapIterator::inc()
{
    m_current = std::next(current());
}

} // namespace kestrix
