#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IVariable;

/// Read-only list of variables.
class IVectorVariables {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IVariable* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorVariables() = default;
#endif
};

} // namespace kestrix
