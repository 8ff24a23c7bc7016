#pragma once

#include "IItemDescriptor.h"

namespace kestrix {

/// A variable, as a HIL channel or an option.
class IVariableDescriptor : public IItemDescriptor {
public:
    virtual DWORD Data() = 0;

protected:
    ~IVariableDescriptor() = default;
};

} // namespace kestrix
