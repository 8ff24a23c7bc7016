#pragma once

#include "IUnknown.h"

namespace kestrix {

class IVectorFunctions;
class IVectorModules;
class IVectorVariables;

/// The global symbols of the program. The lists belong to the object and stay valid while it is held.
class IGlobals : public IUnknown {
public:
    virtual IVectorVariables* Variables() = 0;
    /// Code labels, as variables with their addresses' types.
    virtual IVectorVariables* Labels() = 0;
    virtual IVectorModules* Modules() = 0;
    virtual IVectorFunctions* Functions() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IGlobals() = default;
#endif
};

} // namespace kestrix
