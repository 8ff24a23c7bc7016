#pragma once

#include "GUID.h"
#include "OrbelTypes.h"

namespace kestrix {

/// Base of every interface of the automation object: lookup by identifier and a reference
/// count. An interface pointer is given up with Release, never deleted.
class IUnknown {
public:
    /// Stores the interface named by iid in *object and adds a reference; E_NOINTERFACE and
    /// a null *object if the object has none.
    virtual HRESULT QueryInterface(const GUID& iid, void** object) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;
};

} // namespace kestrix
