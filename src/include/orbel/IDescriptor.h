#pragma once

#include "IUnknown.h"

namespace kestrix {

class IVectorVariableDescriptors;

/// Describes a set of variables, such as the HIL channels of the debug hardware. The lists it
/// gives belong to the descriptor and stay valid while it is held.
class IDescriptor : public IUnknown {
public:
    virtual IVectorVariableDescriptors* VariableDescriptors() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IDescriptor() = default;
#endif
};

} // namespace kestrix
