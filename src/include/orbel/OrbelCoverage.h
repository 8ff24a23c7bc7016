#pragma once

#include "IUnknown.h"
#include "OrbelCoverageFlags.h"
#include "SCoverageRange.h"

namespace kestrix {

/// Coverage of a coverage document, named by its file name in every operation. A failure keeps
/// a class and a text for GetLastError.
class OrbelCoverage : public IUnknown {
public:
    /// Class (OrbelCoverageFlags::EErrorClass) and text of the last failure.
    virtual HRESULT GetLastError(const char* fileName, DWORD reserved, DWORD* errorClass, char* text,
                                 DWORD size) = 0;
    /// what: OrbelCoverageFlags::EInfo.
    virtual HRESULT GetInfo(const char* fileName, DWORD what, DWORD* value) = 0;
    /// item: OrbelCoverageFlags::EConfigItem.
    virtual HRESULT SetConfiguration(const char* fileName, DWORD item, const char* text, DWORD value) = 0;
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved4() = 0;
    /// Slot kept free; answers E_NOTIMPL.
    virtual HRESULT Reserved5() = 0;
    /// kind: OrbelCoverageFlags::ERangesKind; rangeType: ERangesTypes. *count is the room of
    /// ranges in, the number found out.
    virtual HRESULT GetRanges(const char* fileName, DWORD kind, DWORD* count, SCoverageRange* ranges,
                              const char* name, DWORD rangeType) = 0;
    /// One byte per address of [start, end]; size = end - start + 1.
    virtual HRESULT GetBitmap(const char* fileName, DWORD reserved, DWORD start, DWORD end, DWORD size,
                              BYTE* bitmap) = 0;
    /// type: OrbelCoverageFlags::EStatisticsFlags over [start, end].
    virtual HRESULT GetStatistics(const char* fileName, DWORD type, DWORD start, DWORD end, DWORD* value) = 0;

protected:
    ~OrbelCoverage() = default;
};

} // namespace kestrix
