#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// A module of the program: a source file and the path it was built from. Texts belong to the module.
class IModule {
public:
    virtual const char* Name() = 0;
    virtual const char* Path() = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IModule() = default;
#endif
};

} // namespace kestrix
