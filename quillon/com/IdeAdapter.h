#pragma once

#include <map>
#include <memory>
#include <string>

#include "OrbelIDE3.h"
#include "com/Adapter.h"
#include "com/OptionDescriptor.h"
#include "com/Session.h"
#include "services/OptionTree.h"

namespace quillon::com {

/// `OrbelIDE3`, with `OrbelIDE2` and `OrbelIDE` at its start: Quillon as an application.
/// `GetQuillonVersion` answers the version and the number of clients of the attached instance;
/// a headless instance has no main window; of the folders it tells the workspace's folder
/// (request 0x10) and no other. `Option` reads and writes the instance's `OptionTree`: the
/// module bits name the module of the path, and an option is set at once, so a commit has
/// nothing to do. Every operation on one named option that succeeds gives the option's
/// descriptor (OptionDescriptor) in `m_pIDescriptor`. An unknown option answers
/// ORBEL_E_BAD_ID, a bad value E_INVALIDARG, a text or number that does not fit the caller's
/// record ORBEL_E_SIZE, each with the message. `Document` acts on the instance's documents
/// (DocumentCommand): S_FALSE where stop or is-active say no, else a failure's code with its
/// message. `Workspace` runs the instance's workspace commands
/// (7 new, 9 open, 3 save, 4 save as, 1 close, 11 close and discard): S_FALSE for a save without
/// a file; a file that cannot be read, used or written answers ORBEL_E_ERROR with the
/// workspace's message (file, line, key); a missing file name or an unknown command
/// E_INVALIDARG. The windows and service calls answer E_NOTIMPL with a message that names them.
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
    HRESULT workspace(Instance& instance, DWORD command, const std::string& fileName);
    HRESULT quillonVersion(DWORD size, kestrix::SQuillonVersionInfo* info);
    HRESULT option(DWORD flags, const char* scope, const char* name, kestrix::SOptionValue* value);
    /// Sets each "name:value" of the record's text; pairs apart by the option separator.
    HRESULT setNameValues(services::OptionTree& options, const std::string& module, const std::string& scope,
                          const kestrix::SOptionValue& value);
    HRESULT readOption(services::OptionTree& options, const std::string& path, DWORD kind,
                       kestrix::SOptionValue& value);
    HRESULT writeOption(services::OptionTree& options, const std::string& path, DWORD kind,
                        const kestrix::SOptionValue& value);
    HRESULT dynamicOption(services::OptionTree& options, const std::string& path, DWORD operation,
                          kestrix::SOptionValue& value);
    /// The descriptor of the option or list item at `path`, kept for the life of the adapter.
    kestrix::IDescriptor* describe(const services::OptionTree& options, const std::string& path);

    Session& m_session;
    std::map<std::string, std::unique_ptr<OptionDescriptor>> m_optionDescriptors; ///< by path
};

} // namespace quillon::com
