#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IVectorElementDescriptors;
class IVectorEnumMaps;

/// The type of an item's data: its kind and size, and the elements of a structure or the
/// values of an enumeration where it is one (null otherwise).
class IDataDescriptor {
public:
    virtual DWORD Type() = 0;
    /// Size in bytes.
    virtual DWORD Size() = 0;
    virtual IVectorElementDescriptors* Struct() = 0;
    virtual IVectorEnumMaps* Enum() = 0;
    virtual DWORD Container() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IDataDescriptor() = default;
#endif
};

} // namespace kestrix
