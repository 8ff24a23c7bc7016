#pragma once

#include "OrbelProject.h"
#include "com/Adapter.h"
#include "com/Session.h"
#include "services/BuildError.h"

namespace quillon::com {

/// `OrbelProject`: the build manager of the attached instance (BuildService).
///
/// `ProjectCommand` words: 1 custom operation (second: its name, third: parameters put behind its command
/// line), 2 compile (third: a source), 3 link, 4 make, 5 build, 6 dependencies, 15 stop. A command starts
/// the job and answers at once; with the bit 0x10 it answers when the job is done. The job's outcome is in
/// the build status, not in the answer: a command is refused only while a job is active (ORBEL_E_ERROR), for
/// an unknown word or custom operation (ORBEL_E_BAD_ID) and for a compile of a file that is no source
/// (ORBEL_E_FILE_NOT_FOUND).
///
/// `GetBuildStatus` fills the record; when the last job ended with errors or a configuration error, the
/// tools' diagnostics are the warning that `GetLastError` gives.
///
/// `BuildOption` words: 0x10000 read, 0x20000 | index read an item (S_FALSE past the last), 0x30000 set,
/// 0x40000 add, 0x50000 remove, 0x60000 move; scopes, options and values as `BuildOptions` says. A read
/// copies the text with its zero into the buffer; one that does not fit is cut, zero-terminated, and
/// answered ORBEL_S_SIZE. A value is read up to its zero or `size` bytes. Results: ORBEL_E_FILE_NOT_FOUND for
/// a scope that is neither the project nor a source, ORBEL_E_BAD_ID for an unknown option or word or a bad
/// value, ORBEL_E_ERROR without a build section or for a change while a job is active,
/// ORBEL_E_NOT_AVAILABLE where the operation does not apply to the option.
class ProjectAdapter final : public Adapter<kestrix::OrbelProject> {
public:
    ProjectAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT Reserved1() override;
    HRESULT ProjectCommand(DWORD word, const char* second, const char* third) override;
    HRESULT GetBuildStatus(DWORD reserved, kestrix::CBuildStatus* status) override;
    HRESULT BuildOption(DWORD word, const char* scope, const char* option, char* value, DWORD size) override;

private:
    /// Runs `operation` on the instance's build manager; BuildError becomes its result code.
    template <class F> HRESULT serve(const char* name, F&& operation) noexcept;
    static HRESULT codeOf(services::BuildError::Kind kind);
    static HRESULT command(services::BuildService& build, DWORD word, const char* second, const char* third);
    static HRESULT option(services::BuildService& build, DWORD word, const char* scope, const char* option,
                          char* value, DWORD size);
    static HRESULT copyOut(const std::string& text, char* buffer, DWORD size);

    Session& m_session;
};

} // namespace quillon::com
