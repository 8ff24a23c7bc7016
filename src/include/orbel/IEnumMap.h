#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// One named value of an enumeration.
class IEnumMap {
public:
    virtual DWORD Value() = 0;
    virtual const char* Name() = 0;
    virtual const char* Info() = 0;
    virtual DWORD Options() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IEnumMap() = default;
#endif
};

} // namespace kestrix
