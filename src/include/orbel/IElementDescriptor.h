#pragma once

#include "IItemDescriptor.h"

namespace kestrix {

/// An element of a structure, at its offset in bytes.
class IElementDescriptor : public IItemDescriptor {
public:
    virtual DWORD Offset() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IElementDescriptor() = default;
#endif
};

} // namespace kestrix
