#pragma once

#include "IItemDescriptor.h"

namespace kestrix {

/// A variable, as a HIL channel or an option.
class IVariableDescriptor : public IItemDescriptor {
public:
    virtual DWORD Data() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVariableDescriptor() = default;
#endif
};

} // namespace kestrix
