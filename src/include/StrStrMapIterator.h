#pragma once

#include <string>

#include "Containers.h"

namespace kestrix {

/// Forward cursor over a `StrStrMap`. It does not own the map, which must outlive it unchanged.
class StrStrMapIterator {
public:
    explicit StrStrMapIterator(const StrStrMap& map);

    bool isValid() const;
    const std::string& key() const;
    const std::string& value() const;
    void inc();

private:
    StrStrMap::const_iterator current() const;

    StrStrMap::const_iterator m_current;
    StrStrMap::const_iterator m_end;
};

} // namespace kestrix
