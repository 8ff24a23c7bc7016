#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IModule;
class IVectorVariables;

/// A function of the program. Texts belong to the function.
class IFunction {
public:
    virtual const char* Name() = 0;
    virtual const char* QualifiedName() = 0;
    /// The type of its result.
    virtual const char* TypeName() = 0;
    /// The module that defines it; null if none does.
    virtual IModule* Module() = 0;
    virtual IVectorVariables* Parameters() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IFunction() = default;
#endif
};

} // namespace kestrix
