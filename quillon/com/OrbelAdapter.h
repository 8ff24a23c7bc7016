#pragma once

#include <string>

#include "Orbel.h"
#include "com/Adapter.h"
#include "com/Session.h"

namespace quillon::com {

/// `Orbel`: attach to an instance by port, detach, find, start and enumerate instances through
/// the registry, and the last message of the object.
///
/// Instances live in this process: only a local address (null, "", "localhost", "127.0.0.1",
/// "::1") reaches them, over the TCP channel; `Launch` gives the port and no process id. The
/// wait time, discovery and visibility bits of `Launch` are accepted and mean nothing here.
class OrbelAdapter final : public Adapter<kestrix::Orbel> {
public:
    OrbelAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT Attach(const char* address, DWORD port, kestrix::SAttachInfo* info) override;
    HRESULT Detach(DWORD flags) override;
    HRESULT Launch(DWORD flags, kestrix::SLaunchInfo* info) override;
    HRESULT GetLastError(DWORD reserved, char* buffer, DWORD size) override;

private:
    HRESULT attach(const char* address, DWORD port, kestrix::SAttachInfo& info);
    HRESULT launch(DWORD flags, kestrix::SLaunchInfo& info);
    HRESULT enumerate(const kestrix::SLaunchInfo& info);
    /// The message both in `info` and as the last error.
    HRESULT attachFailed(HRESULT code, kestrix::SAttachInfo& info, const std::string& message);
    static bool isLocal(const char* address);

    Session& m_session;
};

} // namespace quillon::com
