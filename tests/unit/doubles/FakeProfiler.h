#pragma once

// Answers of the profiler of the recording double (FakeOrbel.cpp records each call as
// "Profiler.<operation>(...)" and then asks the answer here). An operation without an answer
// returns E_NOTIMPL. A test reaches the answers through `fakeorbel_profiler_answers` and resets
// them itself.

#include <functional>

#include "OrbelResults.h"
#include "OrbelTypes.h"
#include "SProfilerArea.h"
#include "SProfilerCapabilities.h"
#include "SProfilerHistory.h"
#include "SProfilerStartingPoint.h"
#include "SProfilerStatistic.h"
#include "SProfilerStatus.h"

namespace fakeorbel {

struct ProfilerAnswers {
    std::function<HRESULT(DWORD size, kestrix::SProfilerCapabilities* capabilities)> getCapabilities;
    std::function<HRESULT(DWORD flags, kestrix::SProfilerStartingPoint* startingPoint)> startConfiguration;
    std::function<HRESULT(DWORD flags, kestrix::SProfilerArea* area, const char* name, DWORD memArea, DWORD start,
                          DWORD extent, DWORD exitCount, const DWORD* exits)>
        addArea;
    std::function<HRESULT(DWORD what)> control;
    std::function<HRESULT(DWORD flags, kestrix::SProfilerStatus* status)> getStatus;
    std::function<HRESULT(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD* count,
                          kestrix::SProfilerStatistic* records)>
        getStatistics;
    std::function<HRESULT(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD startIndex, DWORD* count,
                          kestrix::SProfilerHistory* records)>
        getHistory;
    std::function<HRESULT(DWORD what, DWORD size, DWORD* value)> getAreaInfo;
    std::function<HRESULT(DWORD key, DWORD size, kestrix::SProfilerArea* area)> getArea;
};

} // namespace fakeorbel

extern "C" fakeorbel::ProfilerAnswers* fakeorbel_profiler_answers();
