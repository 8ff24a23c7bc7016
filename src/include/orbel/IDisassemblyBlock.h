#pragma once

#include "IUnknown.h"

namespace kestrix {

class IVectorDisassemblyLines;

/// A block of disassembled code. The list belongs to the object and stays valid while it is held.
class IDisassemblyBlock : public IUnknown {
public:
    virtual IVectorDisassemblyLines* Lines() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IDisassemblyBlock() = default;
#endif
};

} // namespace kestrix
