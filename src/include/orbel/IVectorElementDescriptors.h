#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IElementDescriptor;

/// Read-only list of the elements of a structure.
class IVectorElementDescriptors {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IElementDescriptor* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorElementDescriptors() = default;
#endif
};

} // namespace kestrix
