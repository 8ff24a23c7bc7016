#pragma once

#include "IUnknown.h"
#include "OrbelHILFlags.h"
#include "SHILInfo.h"

namespace kestrix {

/// Hardware-in-the-loop channels of the debug hardware, addressed by path texts.
class OrbelHIL : public IUnknown {
public:
    /// The values of the channels in paths as text. ORBEL_E_SIZE: buffer too small.
    virtual HRESULT Read(DWORD flags1, DWORD flags2, const char* paths, char* buffer, DWORD size) = 0;
    /// Writes "name:value" text.
    virtual HRESULT Write(DWORD flags1, DWORD flags2, const char* values) = 0;
    /// size: sizeof(SHILInfo).
    virtual HRESULT GetInfo(DWORD size, SHILInfo* info) = 0;

protected:
    ~OrbelHIL() = default;
};

} // namespace kestrix
