#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// A partition of the configuration: a downloadable part of the program and its file. Texts belong to the partition.
class IPartition {
public:
    virtual const char* Name() = 0;
    virtual const char* Path() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IPartition() = default;
#endif
};

} // namespace kestrix
