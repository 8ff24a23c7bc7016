#pragma once

#include "OrbelIDE.h"

namespace kestrix {

/// OrbelIDE with the service calls of the debug hardware.
class OrbelIDE2 : public OrbelIDE {
public:
    /// Calls the service named by its identifier (SERVICE_Line, SERVICE_Flash) with the flag
    /// word OrbelIDEFlags::SERVICE_CALL_FLAGS, an input record and an output record.
    virtual HRESULT ServiceCall(DWORD flags, const GUID* service, DWORD inSize, const void* in,
                                DWORD outSize, void* out, DWORD reserved) = 0;

protected:
    ~OrbelIDE2() = default;
};

} // namespace kestrix
