#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IDataDescriptor;

/// A named item: a variable or an element of a structure. Texts belong to the item.
class IItemDescriptor {
public:
    virtual const char* Name() = 0;
    /// The type of the item's data.
    virtual IDataDescriptor* DataDescriptor() = 0;
    /// Number of array elements; 0 for a scalar.
    virtual DWORD Dimension() = 0;
    virtual DWORD ArrayIndex() = 0;
    virtual const char* Info() = 0;
    virtual DWORD Options() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IItemDescriptor() = default;
#endif
};

} // namespace kestrix
