#pragma once

#include "IUnknown.h"
#include "OrbelFlags.h"
#include "SAttachInfo.h"
#include "SLaunchInfo.h"

namespace kestrix {

/// Main interface of the automation object: sessions with Quillon instances.
class Orbel : public IUnknown {
public:
    /// Connects to an instance: over TCP to address (null: the local host) and port, or over
    /// shared memory to the process id in info (address null, port 0). A failure writes a
    /// message into info.
    virtual HRESULT Attach(const char* address, DWORD port, SAttachInfo* info) = 0;
    /// Ends the session; the object stays usable for a later Attach.
    virtual HRESULT Detach(DWORD flags) = 0;
    /// Finds, starts or enumerates instances (OrbelFlags::ELaunchFlags).
    virtual HRESULT Launch(DWORD flags, SLaunchInfo* info) = 0;
    /// Copies the session's last message into buffer (zero-terminated, cut to size);
    /// ORBEL_S_MSG_FAIL for an error, ORBEL_S_WARNING for a warning, another code for none.
    virtual HRESULT GetLastError(DWORD reserved, char* buffer, DWORD size) = 0;

protected:
    ~Orbel() = default;
};

} // namespace kestrix
