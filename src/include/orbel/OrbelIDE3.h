#pragma once

#include "OrbelIDE2.h"
#include "SOptionValue.h"
#include "SQuillonVersionInfo.h"

namespace kestrix {

/// OrbelIDE2 with information, options and the service call with data.
class OrbelIDE3 : public OrbelIDE2 {
public:
    /// Fills the parts of info that its request bits ask for; size is sizeof(SQuillonVersionInfo).
    virtual HRESULT GetQuillonVersion(DWORD size, SQuillonVersionInfo* info) = 0;
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved6() = 0;
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved7() = 0;
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved8() = 0;
    /// Reads or writes one option (OrbelIDEFlags::EOptionFlags); scope and optionName are
    /// null for a commit.
    virtual HRESULT Option(DWORD flags, const char* scope, const char* optionName,
                           SOptionValue* value) = 0;
    /// A service call with data bytes beside the records (SERVICE_Scan). outData may be null.
    virtual HRESULT ServiceCallData(DWORD flags, const GUID* service, DWORD inSize, const void* in,
                                    DWORD inDataSize, const void* inData, DWORD outSize, void* out,
                                    DWORD outDataSize, void* outData, DWORD reserved) = 0;

protected:
    ~OrbelIDE3() = default;
};

} // namespace kestrix
