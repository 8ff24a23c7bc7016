#pragma once

#include "IUnknown.h"

namespace kestrix {

class IVariable;
class IVectorVariables;

/// The type of an expression. What it gives belongs to the object and stays valid while it is held.
class IExpressionType : public IUnknown {
public:
    /// The expression as a variable: its name, type name, size and type code.
    virtual IVariable* Expression() = 0;
    /// Members or elements of a compound type; empty for a scalar.
    virtual IVectorVariables* Children() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IExpressionType() = default;
#endif
};

} // namespace kestrix
