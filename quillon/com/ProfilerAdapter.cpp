#include "com/ProfilerAdapter.h"

namespace quillon::com {

HRESULT ProfilerAdapter::GetCapabilities(DWORD, kestrix::SProfilerCapabilities*)
{
    return notImplemented("OrbelProfiler2::GetCapabilities");
}

HRESULT ProfilerAdapter::StartConfiguration(DWORD, kestrix::SProfilerStartingPoint*)
{
    return notImplemented("OrbelProfiler2::StartConfiguration");
}

HRESULT ProfilerAdapter::AddArea(DWORD, kestrix::SProfilerArea*, const char*, DWORD, DWORD, DWORD, DWORD,
                                 const DWORD*)
{
    return notImplemented("OrbelProfiler2::AddArea");
}

HRESULT ProfilerAdapter::Control(DWORD)
{
    return notImplemented("OrbelProfiler2::Control");
}

HRESULT ProfilerAdapter::GetStatus(DWORD, kestrix::SProfilerStatus*)
{
    return notImplemented("OrbelProfiler2::GetStatus");
}

HRESULT ProfilerAdapter::GetStatistics(DWORD, DWORD, DWORD, DWORD, DWORD*, kestrix::SProfilerStatistic*)
{
    return notImplemented("OrbelProfiler2::GetStatistics");
}

HRESULT ProfilerAdapter::GetHistory(DWORD, DWORD, DWORD, DWORD, DWORD, DWORD*, kestrix::SProfilerHistory*)
{
    return notImplemented("OrbelProfiler2::GetHistory");
}

HRESULT ProfilerAdapter::GetAreaInfo(DWORD, DWORD, DWORD*)
{
    return notImplemented("OrbelProfiler2::GetAreaInfo");
}

HRESULT ProfilerAdapter::GetArea(DWORD, DWORD, kestrix::SProfilerArea*)
{
    return notImplemented("OrbelProfiler2::GetArea");
}

} // namespace quillon::com
