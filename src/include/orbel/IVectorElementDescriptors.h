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

protected:
    ~IVectorElementDescriptors() = default;
};

} // namespace kestrix
