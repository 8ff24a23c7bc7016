#pragma once

#include <memory>
#include <string>

#include "CAreaProperties.h"
#include "CProfilerCapabilities.h"
#include "CProfilerHistory.h"
#include "CProfilerStatistic.h"
#include "CProfilerStatus.h"
#include "Containers.h"
#include "SProfilerStartingPoint.h"
#include "WrapperBase.h"

namespace kestrix {

/// Drives Quillon's profiler: a configuration of areas (functions, variables, regions, routines),
/// the recording, its status, and the statistics and history of the areas. Every operation is
/// one or a few calls of the profiler interface; nothing is kept here.
class CProfilerController : public WrapperBase {
public:
    explicit CProfilerController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CProfilerController() override;

    CProfilerCapabilities getCapabilities();

    /// A fresh set of areas in Quillon, recorded from the start, from an address, from the entry
    /// of a function, or from the given starting point.
    void startConfiguration(DWORD flags);
    void startConfiguration(DWORD flags, BYTE memArea, DWORD address);
    void startConfiguration(DWORD flags, const std::string& functionName);
    void startConfiguration(DWORD flags, const SProfilerStartingPoint& startingPoint);

    void addFunction(const std::string& name, bool areaBit8 = false);
    void addVariable(const std::string& name, bool areaBit8 = false, bool areaBit9 = false);
    void addRegion(const std::string& name, bool areaBit8, bool areaBit9, int memArea, DWORD start, DWORD extent);
    void addRoutine(const std::string& name, int memArea, DWORD start, DWORD extent, const VectorDWORD& exits);

    DWORD getNumAreas();
    CAreaProperties getAreaProperties(const std::string& name);
    CAreaProperties getAreaProperties(DWORD handle);
    CAreaProperties getAreaProperties(DWORD keyBits, DWORD address);

    void start();
    /// False when Quillon had nothing to stop.
    bool stop();
    CProfilerStatus getStatus(DWORD flags = 0);

    /// The statistic reads append to `list`.
    void getStatisticsAll(DWORD maxItems, ProfilerStatisticVector& list);
    void getStatisticsForHandle(DWORD handle, DWORD maxItems, ProfilerStatisticVector& list);
    void getStatisticsForTask(DWORD task, DWORD maxItems, ProfilerStatisticVector& list);
    void getStatisticsForTask(DWORD handle, DWORD task, DWORD maxItems, ProfilerStatisticVector& list);
    void getStatisticsForValue(DWORD handle, DWORD value, DWORD maxItems, ProfilerStatisticVector& list);

    /// The history reads replace `list`; `startIndex` is the place of the first entry wanted.
    void getHistoryAll(DWORD startIndex, DWORD maxItems, ProfilerHistoryVector& list);
    void getHistoryForHandle(DWORD handle, DWORD startIndex, DWORD maxItems, ProfilerHistoryVector& list);
    void getHistoryForTask(DWORD task, DWORD startIndex, DWORD maxItems, ProfilerHistoryVector& list);
    void getHistoryForTask(DWORD handle, DWORD task, DWORD startIndex, DWORD maxItems, ProfilerHistoryVector& list);
    void getHistoryForValue(DWORD handle, DWORD value, DWORD startIndex, DWORD maxItems,
                            ProfilerHistoryVector& list);

    /// True once the samples are loaded, false after `timeout` ms (none if 0 or below).
    bool waitUntilLoaded(int timeout = 0, DWORD pollingInterval = 100);

#ifdef SWIG
    OrbelProfiler2* getOrbelProfiler() const;
#else
private:
    std::string method(const char* name) const;
    void addArea(DWORD flags, const std::string& name, DWORD memArea, DWORD start, DWORD extent,
                 const VectorDWORD& exits);
    CAreaProperties areaProperties(DWORD key, const std::string& name, DWORD handle, DWORD address);
    void logStatistics(const char* operation, const char* format, DWORD a, DWORD b = 0, DWORD c = 0);
    void readStatistics(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD maxItems,
                        ProfilerStatisticVector& list);
    void logHistory(const char* operation, const char* format, DWORD a, DWORD b, DWORD c = 0, DWORD d = 0);
    void readHistory(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD startIndex, DWORD maxItems,
                     ProfilerHistoryVector& list);
#endif
};

} // namespace kestrix
