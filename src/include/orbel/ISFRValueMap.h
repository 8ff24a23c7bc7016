#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// A named value of a special function register. The text belongs to the map.
class ISFRValueMap {
public:
    virtual const char* String() = 0;
    virtual DWORD Value() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~ISFRValueMap() = default;
#endif
};

} // namespace kestrix
