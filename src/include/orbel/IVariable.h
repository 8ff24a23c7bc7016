#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IModule;

/// A variable, a parameter or a label of the program. Texts belong to the variable.
class IVariable {
public:
    virtual const char* Name() = 0;
    virtual const char* QualifiedName() = 0;
    virtual const char* TypeName() = 0;
    /// Size in bytes.
    virtual DWORD NumBytes() = 0;
    /// Type code of SType (tUnsigned, tSigned, ...).
    virtual DWORD Type() = 0;
    /// Number of array elements; 0 for a scalar.
    virtual DWORD ArrayDimension() = 0;
    /// The module that defines it; null if none does.
    virtual IModule* Module() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVariable() = default;
#endif
};

} // namespace kestrix
