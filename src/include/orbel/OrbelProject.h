#pragma once

#include "CBuildStatus.h"
#include "IUnknown.h"
#include "OrbelProjectFlags.h"

namespace kestrix {

/// Quillon's build manager. Commands return when accepted; the build goes on in Quillon.
class OrbelProject : public IUnknown {
public:
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved1() = 0;
    /// word: OrbelProjectFlags::EProjectCommand; second and third may be null.
    virtual HRESULT ProjectCommand(DWORD word, const char* second, const char* third) = 0;
    virtual HRESULT GetBuildStatus(DWORD reserved, CBuildStatus* status) = 0;
    /// word: OrbelProjectFlags::EBuildOption. value is the out buffer of a read, else the value
    /// with its terminator; size is its size in bytes.
    virtual HRESULT BuildOption(DWORD word, const char* scope, const char* option, char* value, DWORD size) = 0;

protected:
    ~OrbelProject() = default;
};

} // namespace kestrix
