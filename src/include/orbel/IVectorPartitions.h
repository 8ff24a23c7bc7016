#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IPartition;

/// Read-only list of partitions.
class IVectorPartitions {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IPartition* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorPartitions() = default;
#endif
};

} // namespace kestrix
