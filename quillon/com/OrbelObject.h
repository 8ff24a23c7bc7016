#pragma once

#include <atomic>

#include "IUnknown.h"
#include "com/BetaExtraAdapter.h"
#include "com/CoverageAdapter.h"
#include "com/DebugAdapter.h"
#include "com/EclipseAdapter.h"
#include "com/HilAdapter.h"
#include "com/IdeAdapter.h"
#include "com/LastError.h"
#include "com/OrbelAdapter.h"
#include "com/ProfilerAdapter.h"
#include "com/ProjectAdapter.h"
#include "com/Session.h"
#include "com/SinkAdapter.h"
#include "com/TestAdapter.h"
#include "instance/InstanceRegistry.h"

namespace quillon::com {

/// The automation object: one reference count for all its interfaces, each served by its
/// adapter and found by `QueryInterface` through its identifier (an interface that extends
/// another answers the identifiers of both). The object holds one session with an instance of
/// `registry` and the last message of its operations (per object, see `LastError`). It deletes
/// itself when the last reference goes, detaching from its instance.
class OrbelObject final : public kestrix::IUnknown {
public:
    /// A new object with one reference.
    static OrbelObject* create(InstanceRegistry& registry);

    HRESULT QueryInterface(const kestrix::GUID& iid, void** object) override;
    ULONG AddRef() override;
    ULONG Release() override;

private:
    explicit OrbelObject(InstanceRegistry& registry);
    ~OrbelObject() = default;

    /// The interface of `iid`, or null.
    void* find(const kestrix::GUID& iid);

    std::atomic<ULONG> m_references{1};
    LastError m_lastError;
    Session m_session;
    OrbelAdapter m_orbel{*this, m_lastError, m_session};
    IdeAdapter m_ide{*this, m_lastError, m_session};
    DebugAdapter m_debug{*this, m_lastError, m_session};
    ProfilerAdapter m_profiler{*this, m_lastError, m_session};
    ProjectAdapter m_project{*this, m_lastError, m_session};
    CoverageAdapter m_coverage{*this, m_lastError, m_session};
    TestAdapter m_test{*this, m_lastError, m_session};
    HilAdapter m_hil{*this, m_lastError, m_session};
    EclipseAdapter m_eclipse{*this, m_lastError};
    SinkAdapter m_sink{*this, m_lastError};
    BetaExtraAdapter m_betaExtra{*this, m_lastError};
};

} // namespace quillon::com
