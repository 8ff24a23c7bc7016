#pragma once

#include "IUnknown.h"

namespace kestrix {

class IVectorSFRs;

/// The special function registers of a CPU. Text and list belong to the object and stay valid while it is held.
class ICPUSFR : public IUnknown {
public:
    virtual const char* CPUName() = 0;
    virtual IVectorSFRs* SFRs() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~ICPUSFR() = default;
#endif
};

} // namespace kestrix
