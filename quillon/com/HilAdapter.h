#pragma once

#include "OrbelHIL.h"
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "com/Adapter.h"
#include "com/HilDescriptor.h"
#include "com/Session.h"
#include "services/AnalyzerError.h"

namespace quillon::com {

/// `OrbelHIL`: the HIL channels of the attached instance (HilService). `Read` takes channel names apart by
/// commas ("" for all) and answers "name:value" pairs apart by commas; a buffer too small for the answer is
/// ORBEL_E_SIZE. `Write` takes "name:value" pairs apart by commas or semicolons. The two flag words have no
/// meaning here and are not looked at. An unknown channel answers ORBEL_E_BAD_ID, a bad text or value
/// E_INVALIDARG, a write while the target runs ORBEL_E_ERROR, each with a message that names it. `GetInfo`
/// gives the descriptor of the instance's channels (HilDescriptor) when asked for it, a new one once the instance
/// has opened another workspace; each belongs to the automation object and stays valid while the object lives.
class HilAdapter final : public Adapter<kestrix::OrbelHIL> {
public:
    HilAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT Read(DWORD flags1, DWORD flags2, const char* paths, char* buffer, DWORD size) override;
    HRESULT Write(DWORD flags1, DWORD flags2, const char* values) override;
    HRESULT GetInfo(DWORD size, kestrix::SHILInfo* info) override;

private:
    template <class F> HRESULT serve(const char* name, F&& operation) noexcept;
    static HRESULT codeOf(services::AnalyzerError::Kind kind);

    Session& m_session;
    std::mutex m_mutex;
    /// The descriptors made for one instance; a new one when its workspace has changed.
    struct Descriptors {
        std::weak_ptr<Workbench> bench;                   ///< whose channels the last one lists
        std::vector<std::unique_ptr<HilDescriptor>> made; ///< all stay valid; the last is current
    };
    std::map<std::string, Descriptors> m_descriptors; ///< by instance id
};

} // namespace quillon::com
