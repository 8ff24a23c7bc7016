#include "com/CoverageAdapter.h"

namespace quillon::com {

HRESULT CoverageAdapter::GetLastError(const char*, DWORD, DWORD*, char*, DWORD)
{
    return notImplemented("OrbelCoverage::GetLastError");
}

HRESULT CoverageAdapter::GetInfo(const char*, DWORD, DWORD*)
{
    return notImplemented("OrbelCoverage::GetInfo");
}

HRESULT CoverageAdapter::SetConfiguration(const char*, DWORD, const char*, DWORD)
{
    return notImplemented("OrbelCoverage::SetConfiguration");
}

HRESULT CoverageAdapter::Reserved4()
{
    return notImplemented("OrbelCoverage::Reserved4");
}

HRESULT CoverageAdapter::Reserved5()
{
    return notImplemented("OrbelCoverage::Reserved5");
}

HRESULT CoverageAdapter::GetRanges(const char*, DWORD, DWORD*, kestrix::SCoverageRange*, const char*, DWORD)
{
    return notImplemented("OrbelCoverage::GetRanges");
}

HRESULT CoverageAdapter::GetBitmap(const char*, DWORD, DWORD, DWORD, DWORD, BYTE*)
{
    return notImplemented("OrbelCoverage::GetBitmap");
}

HRESULT CoverageAdapter::GetStatistics(const char*, DWORD, DWORD, DWORD, DWORD*)
{
    return notImplemented("OrbelCoverage::GetStatistics");
}

} // namespace quillon::com
