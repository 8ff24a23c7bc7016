#pragma once

#include "OrbelProfiler2.h"
#include "com/Adapter.h"
#include "com/Session.h"
#include "services/ProfilerService.h"
#include "services/ServiceError.h"

namespace quillon::com {

/// `OrbelProfiler2`: the profiler of the attached instance. Records and flag words become calls of its
/// ProfilerService; a failure answers a result code and leaves its text for `Orbel::GetLastError`:
/// E_INVALIDARG for a record or selector that cannot be used, ORBEL_E_BAD_ID for an area that cannot be added or
/// is not there, ORBEL_E_ERROR for an operation out of order (no configuration, a recording that cannot start),
/// ORBEL_E_NOT_AVAILABLE for what the simulated target has not (other time stamp sources, tasks).
class ProfilerAdapter final : public Adapter<kestrix::OrbelProfiler2> {
public:
    ProfilerAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT GetCapabilities(DWORD size, kestrix::SProfilerCapabilities* capabilities) override;
    HRESULT StartConfiguration(DWORD flags, kestrix::SProfilerStartingPoint* startingPoint) override;
    HRESULT AddArea(DWORD flags, kestrix::SProfilerArea* area, const char* name, DWORD memArea, DWORD start,
                    DWORD extent, DWORD exitCount, const DWORD* exits) override;
    HRESULT Control(DWORD what) override;
    HRESULT GetStatus(DWORD flags, kestrix::SProfilerStatus* status) override;
    HRESULT GetStatistics(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD* count,
                          kestrix::SProfilerStatistic* records) override;
    HRESULT GetHistory(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD startIndex, DWORD* count,
                       kestrix::SProfilerHistory* records) override;
    HRESULT GetAreaInfo(DWORD what, DWORD size, DWORD* value) override;
    HRESULT GetArea(DWORD key, DWORD size, kestrix::SProfilerArea* area) override;

private:
    /// How an operation answers the service's failures.
    enum class Answers {
        ByKind,   ///< by the kind of failure
        AreaAdd,  ///< ORBEL_E_BAD_ID, but ORBEL_E_ERROR for an operation out of order
        Recording ///< ORBEL_E_ERROR
    };

    /// Runs `operation` on the attached instance's profiler.
    template <class F> HRESULT serve(const char* name, Answers answers, F&& operation) noexcept;
    static HRESULT codeOf(const services::ServiceError& error, Answers answers);
    static services::ProfilerService::Selection selection(DWORD kind, DWORD handle, DWORD task, DWORD value);
    static void fill(const services::ProfilerArea& from, kestrix::SProfilerArea& to);

    Session& m_session;
};

} // namespace quillon::com
