#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IVariableDescriptor;

/// Read-only list of variable descriptors.
class IVectorVariableDescriptors {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IVariableDescriptor* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorVariableDescriptors() = default;
#endif
};

} // namespace kestrix
