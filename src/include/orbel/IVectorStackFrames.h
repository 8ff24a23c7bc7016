#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IStackFrame;

/// Read-only list of stack frames.
class IVectorStackFrames {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IStackFrame* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorStackFrames() = default;
#endif
};

} // namespace kestrix
