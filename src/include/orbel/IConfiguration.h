#pragma once

#include "IUnknown.h"

namespace kestrix {

class IVectorPartitions;

/// The partitions of the debug configuration. The list belongs to the object and stays valid while it is held.
class IConfiguration : public IUnknown {
public:
    virtual IVectorPartitions* Partitions() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IConfiguration() = default;
#endif
};

} // namespace kestrix
