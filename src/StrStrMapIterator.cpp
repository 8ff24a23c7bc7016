#include "StrStrMapIterator.h"

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
const std::string& StrStrMapIterator::key() const
{
    if (!isValid()) {
        throw IndexOutOfBoundsException(KX_POS, "Map iterator is at the end!");
    }
    return m_current->first;
}

const std::string& StrStrMapIterator::value() const
{
    if (!isValid()) {
        throw IndexOutOfBoundsException(KX_POS, "Map iterator is at the end!");
    }
    return m_current->second;
}

void StrStrMapIterator::inc()
{
    if (!isValid()) {
        throw IndexOutOfBoundsException(KX_POS, "Map iterator is at the end!");
    }
    ++m_current;
}

} // namespace kestrix
