#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// One disassembled instruction with its place in the source. Texts belong to the line.
class IDisassemblyLine {
public:
    virtual ADDRESS Address() = 0;
    virtual const char* OpCode() = 0;
    virtual const char* OpCodeArgs() = 0;
    virtual const char* FileName() = 0;
    virtual DWORD LineNumber() = 0;
    virtual const char* FunctionName() = 0;
    /// Bytes from the start of the function.
    virtual DWORD FunctionOffset() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IDisassemblyLine() = default;
#endif
};

} // namespace kestrix
