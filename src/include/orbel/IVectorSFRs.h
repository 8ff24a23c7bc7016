#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class ISFR;

/// Read-only list of special function registers.
class IVectorSFRs {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual ISFR* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorSFRs() = default;
#endif
};

} // namespace kestrix
