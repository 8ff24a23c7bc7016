#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IFunction;

/// Read-only list of functions.
class IVectorFunctions {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IFunction* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorFunctions() = default;
#endif
};

} // namespace kestrix
