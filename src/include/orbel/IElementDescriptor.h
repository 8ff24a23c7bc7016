#pragma once

#include "IItemDescriptor.h"

namespace kestrix {

/// An element of a structure, at its offset in bytes.
class IElementDescriptor : public IItemDescriptor {
public:
    virtual DWORD Offset() = 0;

protected:
    ~IElementDescriptor() = default;
};

} // namespace kestrix
