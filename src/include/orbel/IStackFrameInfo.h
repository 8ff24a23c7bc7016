#pragma once

#include "IUnknown.h"

namespace kestrix {

class IVectorStackFrames;

/// The call stack, innermost frame first. The list belongs to the object and stays valid while it is held.
class IStackFrameInfo : public IUnknown {
public:
    virtual IVectorStackFrames* StackFrames() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IStackFrameInfo() = default;
#endif
};

} // namespace kestrix
