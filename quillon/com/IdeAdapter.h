#pragma once

#include "OrbelIDE3.h"
#include "com/Adapter.h"
#include "com/Session.h"

namespace quillon::com {

/// `OrbelIDE3`, with `OrbelIDE2` and `OrbelIDE` at its start: Quillon as an application.
/// `GetQuillonVersion` answers the version and the number of clients of the attached instance;
/// a headless instance has no main window and no folders to tell, so those requests stay
/// unanswered. The other operations answer E_NOTIMPL with a message that names them until the
/// service behind them exists.
class IdeAdapter final : public Adapter<kestrix::OrbelIDE3> {
public:
    IdeAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT Document(DWORD, const char*, const char*, DWORD) override;
    HRESULT Workspace(DWORD, const char*) override;
    HRESULT Application(DWORD, kestrix::SApplicationData*) override;
    HRESULT ServiceCall(DWORD, const kestrix::GUID*, DWORD, const void*, DWORD, void*, DWORD) override;
    HRESULT GetQuillonVersion(DWORD size, kestrix::SQuillonVersionInfo* info) override;
    HRESULT Reserved6() override;
    HRESULT Reserved7() override;
    HRESULT Reserved8() override;
    HRESULT Option(DWORD, const char*, const char*, kestrix::SOptionValue*) override;
    HRESULT ServiceCallData(DWORD, const kestrix::GUID*, DWORD, const void*, DWORD, const void*, DWORD, void*,
                            DWORD, void*, DWORD) override;

private:
    HRESULT quillonVersion(DWORD size, kestrix::SQuillonVersionInfo* info);

    Session& m_session;
};

} // namespace quillon::com
