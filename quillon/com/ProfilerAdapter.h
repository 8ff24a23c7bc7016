#pragma once

#include "OrbelProfiler2.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelProfiler2`: the profiler. Every operation answers E_NOTIMPL with a message that names it
/// until the service behind it exists.
class ProfilerAdapter final : public Adapter<kestrix::OrbelProfiler2> {
public:
    using Adapter::Adapter;

    HRESULT GetCapabilities(DWORD, kestrix::SProfilerCapabilities*) override;
    HRESULT StartConfiguration(DWORD, kestrix::SProfilerStartingPoint*) override;
    HRESULT AddArea(DWORD, kestrix::SProfilerArea*, const char*, DWORD, DWORD, DWORD, DWORD,
                    const DWORD*) override;
    HRESULT Control(DWORD) override;
    HRESULT GetStatus(DWORD, kestrix::SProfilerStatus*) override;
    HRESULT GetStatistics(DWORD, DWORD, DWORD, DWORD, DWORD*, kestrix::SProfilerStatistic*) override;
    HRESULT GetHistory(DWORD, DWORD, DWORD, DWORD, DWORD, DWORD*, kestrix::SProfilerHistory*) override;
    HRESULT GetAreaInfo(DWORD, DWORD, DWORD*) override;
    HRESULT GetArea(DWORD, DWORD, kestrix::SProfilerArea*) override;
};

} // namespace quillon::com
