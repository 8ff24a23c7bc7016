#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IDisassemblyLine;

/// Read-only list of disassembled lines.
class IVectorDisassemblyLines {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IDisassemblyLine* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorDisassemblyLines() = default;
#endif
};

} // namespace kestrix
