#pragma once

#include "OrbelCoverage.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelCoverage`: code coverage. Every operation answers E_NOTIMPL with a message that names it
/// until the service behind it exists.
class CoverageAdapter final : public Adapter<kestrix::OrbelCoverage> {
public:
    using Adapter::Adapter;

    HRESULT GetLastError(const char*, DWORD, DWORD*, char*, DWORD) override;
    HRESULT GetInfo(const char*, DWORD, DWORD*) override;
    HRESULT SetConfiguration(const char*, DWORD, const char*, DWORD) override;
    HRESULT Reserved4() override;
    HRESULT Reserved5() override;
    HRESULT GetRanges(const char*, DWORD, DWORD*, kestrix::SCoverageRange*, const char*, DWORD) override;
    HRESULT GetBitmap(const char*, DWORD, DWORD, DWORD, DWORD, BYTE*) override;
    HRESULT GetStatistics(const char*, DWORD, DWORD, DWORD, DWORD*) override;
};

} // namespace quillon::com
