#pragma once

#include "OrbelTypes.h"

namespace kestrix {

class IModule;

/// Read-only list of modules.
class IVectorModules {
public:
    virtual DWORD size() = 0;
    /// Null for an index outside the list.
    virtual IModule* at(DWORD index) = 0;

#ifndef SWIG
    // Released by its owner, never deleted through this interface.
protected:
    ~IVectorModules() = default;
#endif
};

} // namespace kestrix
