#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IEnumMap;

/// Read-only list of the named values of an enumeration.
class IVectorEnumMaps {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IEnumMap* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorEnumMaps() = default;
#endif
};

} // namespace kestrix
