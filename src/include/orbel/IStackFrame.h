#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IVectorVariables;

/// One frame of the call stack. Texts and lists belong to the frame.
class IStackFrame {
public:
    /// Execution point of the frame.
    virtual ADDRESS Address() = 0;
    virtual DWORD MemoryArea() = 0;
    virtual const char* FileName() = 0;
    virtual DWORD LineNumber() = 0;
    virtual const char* FunctionName() = 0;
    /// Local variables.
    virtual IVectorVariables* Variables() = 0;
    virtual IVectorVariables* Arguments() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IStackFrame() = default;
#endif
};

} // namespace kestrix
