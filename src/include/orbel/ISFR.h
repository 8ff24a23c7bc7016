#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IVectorSFRs;
class IVectorValueMap;

/// A special function register, or a group of them. Texts and lists belong to the register.
class ISFR {
public:
    virtual DWORD Handle() = 0;
    /// False for a group that only holds other registers.
    virtual bool HasValue() = 0;
    virtual const char* Name() = 0;
    virtual DWORD BitSize() = 0;
    virtual DWORD Properties() = 0;
    /// Named values of the register.
    virtual IVectorValueMap* ValueMaps() = 0;
    /// Registers of a group.
    virtual IVectorSFRs* SFRs() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~ISFR() = default;
#endif
};

} // namespace kestrix
