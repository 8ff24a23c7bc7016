#pragma once

#include "OrbelProfiler.h"
#include "SProfilerArea.h"
#include "SProfilerCapabilities.h"
#include "SProfilerHistory.h"
#include "SProfilerStartingPoint.h"
#include "SProfilerStatistic.h"
#include "SProfilerStatus.h"

namespace kestrix {

/// The profiler: a configuration of areas, a recording, statistics and history per area.
class OrbelProfiler2 : public OrbelProfiler {
public:
    /// size: sizeof(SProfilerCapabilities).
    virtual HRESULT GetCapabilities(DWORD size, SProfilerCapabilities* capabilities) = 0;
    /// Starts a fresh set of areas (flags: OrbelProfilerFlags::EConfigFlags).
    virtual HRESULT StartConfiguration(DWORD flags, SProfilerStartingPoint* startingPoint) = 0;
    /// Adds an area (OrbelProfilerFlags::EAreaFlags); area gets its name, handle and address.
    /// memArea, start, extent and the exits are 0 where the kind has none; exits holds exitCount
    /// addresses of a routine. ORBEL_E_BAD_ID: the name exists or the area is not valid.
    virtual HRESULT AddArea(DWORD flags, SProfilerArea* area, const char* name, DWORD memArea, DWORD start,
                            DWORD extent, DWORD exitCount, const DWORD* exits) = 0;
    /// what: OrbelProfilerFlags::EControl.
    virtual HRESULT Control(DWORD what) = 0;
    /// flags: OrbelProfilerFlags::EStatusFlags.
    virtual HRESULT GetStatus(DWORD flags, SProfilerStatus* status) = 0;
    /// kind: OrbelProfilerFlags::ESelector. *count is the room of records in, the number
    /// filled out.
    virtual HRESULT GetStatistics(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD* count,
                                  SProfilerStatistic* records) = 0;
    /// As GetStatistics, from the entry startIndex of the recorded history.
    virtual HRESULT GetHistory(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD startIndex,
                               DWORD* count, SProfilerHistory* records) = 0;
    /// what: OrbelProfilerFlags::EAreaInfo; size: the bytes at value (4).
    virtual HRESULT GetAreaInfo(DWORD what, DWORD size, DWORD* value) = 0;
    /// key: OrbelProfilerFlags::EAreaKey; size: sizeof(SProfilerArea).
    virtual HRESULT GetArea(DWORD key, DWORD size, SProfilerArea* area) = 0;

protected:
    ~OrbelProfiler2() = default;
};

} // namespace kestrix
