#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class ISFRValueMap;

/// Read-only list of the named values of a register.
class IVectorValueMap {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual ISFRValueMap* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorValueMap() = default;
#endif
};

} // namespace kestrix
