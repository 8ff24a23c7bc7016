#pragma once

#include <string>

#include "OrbelCoverage.h"
#include "com/Adapter.h"
#include "com/CoverageLastError.h"
#include "com/Session.h"
#include "services/AnalyzerError.h"
#include "services/CoverageService.h"

namespace quillon::com {

/// `OrbelCoverage`: the coverage of the attached instance's coverage documents (CoverageService). A failure
/// answers E_FAIL (ORBEL_E_NOT_CONNECTED when not attached) and keeps a class and text for the document, which
/// `GetLastError` gives: class 1 for a value the operation cannot take, 25 for an operation that cannot be done
/// now (the target runs, no rangeset is active, not attached), 2 for anything else (no such document, function
/// or module; a file that cannot be read). The text is also `Orbel::GetLastError`'s.
///
/// `SetConfiguration` answers S_FALSE for a rangeset that exists already. `GetRanges` writes at most the room
/// the caller gives; finding more ranges fails and answers the number found in `*count`. Ranges end at their
/// last byte. `GetBitmap` needs `size` = end - start + 1.
class CoverageAdapter final : public Adapter<kestrix::OrbelCoverage> {
public:
    CoverageAdapter(kestrix::IUnknown& owner, LastError& lastError, Session& session)
        : Adapter(owner, lastError), m_session(session)
    {
    }

    HRESULT GetLastError(const char* fileName, DWORD reserved, DWORD* errorClass, char* text, DWORD size) override;
    HRESULT GetInfo(const char* fileName, DWORD what, DWORD* value) override;
    HRESULT SetConfiguration(const char* fileName, DWORD item, const char* text, DWORD value) override;
    HRESULT Reserved4() override;
    HRESULT Reserved5() override;
    HRESULT GetRanges(const char* fileName, DWORD kind, DWORD* count, kestrix::SCoverageRange* ranges,
                      const char* name, DWORD rangeType) override;
    HRESULT GetBitmap(const char* fileName, DWORD reserved, DWORD start, DWORD end, DWORD size,
                      BYTE* bitmap) override;
    HRESULT GetStatistics(const char* fileName, DWORD type, DWORD start, DWORD end, DWORD* value) override;

private:
    /// Runs `operation` on the attached instance's coverage service for the document; a failure keeps its
    /// class and text. `operation` returns the result code of a success.
    template <class F> HRESULT serve(const char* name, const char* fileName, F&& operation) noexcept;
    static DWORD classOf(services::AnalyzerError::Kind kind);

    Session& m_session;
    CoverageLastError m_coverageError;
};

} // namespace quillon::com
