#include "CProfilerController.h"

#include <cstring>
#include <vector>

#include "CLogger.h"
#include "CUtil.h"
#include "Exceptions.h"
#include "OrbelDebug.h"
#include "OrbelDebugFlags.h"
#include "OrbelProfiler2.h"
#include "OrbelResults.h"
#include "Platform.h"
#include "Stopwatch.h"

namespace kestrix {

namespace {

// Kinds of AddArea and their two further bits.
const DWORD AREA_FUNCTION = 0x10;
const DWORD AREA_ROUTINE = 0x20;
const DWORD AREA_VARIABLE = 0x30;
const DWORD AREA_REGION = 0x40;
const DWORD AREA_BIT8 = 0x100;
const DWORD AREA_BIT9 = 0x200;

// Selectors of GetStatistics and GetHistory.
const DWORD SELECT_HANDLE = 0x01;
const DWORD SELECT_ALL = 0x02;
const DWORD SELECT_TASK = 0x10;
const DWORD SELECT_HANDLE_AND_TASK = 0x11;
const DWORD SELECT_TASK_ONLY = 0x12;
const DWORD SELECT_HANDLE_AND_VALUE = 0x21;

// Keys of GetArea.
const DWORD KEY_HANDLE = 0;
const DWORD KEY_NAME = 1;
const DWORD KEY_ADDRESS = 2;

const DWORD CONTROL_START = 1;
const DWORD CONTROL_STOP = 2;
const DWORD AREA_INFO_COUNT = 0;
const DWORD MAX_AREA_NAME = 256;

DWORD bits(bool areaBit8, bool areaBit9)
{
    return (areaBit8 ? AREA_BIT8 : 0) | (areaBit9 ? AREA_BIT9 : 0);
}

std::string configFlags(DWORD flags)
{
    return CLogger::obProfilerConfigFlags2str(static_cast<int>(flags));
}

} // namespace

CProfilerController::CProfilerController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "profilerCtrl";
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId + " = obFactory.getProfilerCtrl()");
    }
}

CProfilerController::~CProfilerController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CProfilerController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CProfilerController::method(const char* name) const
{
    return std::string("kestrix::CProfilerController::") + name;
}

CProfilerCapabilities CProfilerController::getCapabilities()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getCapabilities"));
    }
    SProfilerCapabilities capabilities;
    capabilities.m_dwVersion = SProfilerCapabilities::VERSION;
    const HRESULT hr = getOrbelProfiler()->GetCapabilities(sizeof(capabilities), &capabilities);
    if (hr != S_OK) {
        throw IOException(KX_POS, "CProfilerController::getCapabilities() failed!", getResultText(hr));
    }
    if (capabilities.m_dwVersion != SProfilerCapabilities::VERSION) {
        throw IOException(KX_POS, "Unknown capabilities returned: ", static_cast<int>(capabilities.m_dwVersion));
    }
    return CProfilerCapabilities(capabilities);
}

void CProfilerController::startConfiguration(DWORD flags)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("startConfiguration"), "v", configFlags(flags));
    }
    SProfilerStartingPoint startingPoint;
    startingPoint.m_byEvent = SStartingPoint::eventNone;
    startConfiguration(flags, startingPoint);
}

void CProfilerController::startConfiguration(DWORD flags, BYTE memArea, DWORD address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("startConfiguration"), "viD", configFlags(flags), memArea, address);
    }
    SProfilerStartingPoint startingPoint;
    startingPoint.m_byEvent = SStartingPoint::eventAddress;
    startingPoint.m_byMemArea = memArea;
    startingPoint.m_aAddress = address;
    startConfiguration(flags, startingPoint);
}

void CProfilerController::startConfiguration(DWORD flags, const std::string& functionName)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("startConfiguration"), "vs", configFlags(flags), functionName);
    }
    BYTE memArea = 0;
    ADDRESS address = 0;
    DWORD size = 0;
    SType type;
    const HRESULT hr =
        getOrbelDebug()->GetAddress(OrbelDebugFlags::gafFunctions, functionName.c_str(), &memArea, &address, &size, &type);
    if (hr != S_OK) {
        throw IOException(KX_POS, "Can not get function address: " + functionName, getResultText(hr));
    }
    SProfilerStartingPoint startingPoint;
    startingPoint.m_byEvent = SStartingPoint::eventAddress;
    startingPoint.m_byMemArea = memArea;
    startingPoint.m_aAddress = address;
    startConfiguration(flags, startingPoint);
}

void CProfilerController::startConfiguration(DWORD flags, const SProfilerStartingPoint& startingPoint)
{
    if (CLogger* logger = getLogger()) {
        logger->log("startingPoint = kestrix.orbel.SProfilerStartingPoint()");
        logger->logf(instanceId, method("startConfiguration"), "vv", configFlags(flags), "startingPoint");
    }
    SProfilerStartingPoint given = startingPoint;
    const HRESULT hr = getOrbelProfiler()->StartConfiguration(flags, &given);
    if (hr != S_OK) {
        throw IOException(KX_POS, "CProfilerController::startConfiguration() failed!", getResultText(hr));
    }
}

void CProfilerController::addFunction(const std::string& name, bool areaBit8)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("addFunction"), "sb", name, areaBit8);
    }
    addArea(AREA_FUNCTION | bits(areaBit8, false), name, 0, 0, 0, VectorDWORD());
}

void CProfilerController::addVariable(const std::string& name, bool areaBit8, bool areaBit9)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("addVariable"), "sbb", name, areaBit8, areaBit9);
    }
    addArea(AREA_VARIABLE | bits(areaBit8, areaBit9), name, 0, 0, 0, VectorDWORD());
}

void CProfilerController::addRegion(const std::string& name, bool areaBit8, bool areaBit9, int memArea, DWORD start,
                                    DWORD extent)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("addRegion"), "sbbiDD", name, areaBit8, areaBit9, memArea, start, extent);
    }
    addArea(AREA_REGION | bits(areaBit8, areaBit9), name, static_cast<DWORD>(memArea), start, extent, VectorDWORD());
}

void CProfilerController::addRoutine(const std::string& name, int memArea, DWORD start, DWORD extent,
                                     const VectorDWORD& exits)
{
    if (CLogger* logger = getLogger()) {
        logger->log("exits = kestrix.orbel.VectorDWORD([");
        for (DWORD exit : exits) {
            logger->log(CUtil::i2a(static_cast<unsigned int>(exit)));
            logger->log(", ");
        }
        logger->log("])");
        logger->logf(instanceId, method("addRoutine"), "siDDv", name, memArea, start, extent, "exits");
    }
    addArea(AREA_ROUTINE, name, static_cast<DWORD>(memArea), start, extent, exits);
}

void CProfilerController::addArea(DWORD flags, const std::string& name, DWORD memArea, DWORD start, DWORD extent,
                                  const VectorDWORD& exits)
{
    SProfilerArea area;
    const HRESULT hr = getOrbelProfiler()->AddArea(flags, &area, name.c_str(), memArea, start, extent,
                                                   static_cast<DWORD>(exits.size()),
                                                   exits.empty() ? nullptr : exits.data());
    if (hr == S_OK) {
        return;
    }
    if (hr == ORBEL_E_BAD_ID) {
        throw IOException(KX_POS,
                          "The area could not be added. Either an area with that name already exists, or "
                          "parameters are not valid.",
                          getResultText(hr));
    }
    throw IOException(KX_POS, "CProfilerController::_addArea() failed!", getResultText(hr));
}

DWORD CProfilerController::getNumAreas()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getNumAreas"));
    }
    DWORD count = 0;
    const HRESULT hr = getOrbelProfiler()->GetAreaInfo(AREA_INFO_COUNT, sizeof(count), &count);
    if (hr != S_OK) {
        throw IOException(KX_POS, "kestrix::CProfilerController::getNumAreasfailed: ", getResultText(hr));
    }
    return count;
}

CAreaProperties CProfilerController::getAreaProperties(const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getAreaProperties"), name);
    }
    return areaProperties(KEY_NAME, name, 0, 0);
}

CAreaProperties CProfilerController::getAreaProperties(DWORD handle)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getAreaProperties"), handle);
    }
    return areaProperties(KEY_HANDLE, "", handle, 0);
}

CAreaProperties CProfilerController::getAreaProperties(DWORD keyBits, DWORD address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getAreaProperties"), "DD", keyBits, address);
    }
    return areaProperties(keyBits | KEY_ADDRESS, "", 0, address);
}

CAreaProperties CProfilerController::areaProperties(DWORD key, const std::string& name, DWORD handle, DWORD address)
{
    SProfilerArea area;
    if (key == KEY_NAME) {
        if (name.size() >= MAX_AREA_NAME) {
            throw IOException(KX_POS, "Area name to long!")
                .add("area", name)
                .add("areaNameLen", static_cast<int>(name.size()))
                .add("maxAreaNameLen", static_cast<int>(MAX_AREA_NAME));
        }
        std::memcpy(area.m_szName, name.c_str(), name.size() + 1);
    } else if (key == KEY_HANDLE) {
        area.m_dwHandle = handle;
    } else if (key == KEY_ADDRESS) {
        area.m_aAddress = address;
    }
    const HRESULT hr = getOrbelProfiler()->GetArea(key, sizeof(area), &area);
    if (hr != S_OK) {
        throw IOException(KX_POS, "kestrix::CProfilerController::getResultAreafailed!")
            .add("stdError", getResultText(hr))
            .add("areaName", name)
            .add("areaHandle", CUtil::i2a(static_cast<unsigned int>(handle)))
            .add("areaAddress", CUtil::i2a(static_cast<unsigned int>(address)));
    }
    return CAreaProperties(std::string(area.m_szName, strnlen(area.m_szName, sizeof(area.m_szName))),
                           area.m_dwHandle, area.m_aAddress);
}

void CProfilerController::start()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("start"));
    }
    const HRESULT hr = getOrbelProfiler()->Control(CONTROL_START);
    if (hr == S_OK) {
        return;
    }
    if (hr == ORBEL_E_ERROR) {
        throw IOException(KX_POS,
                          "Profiler can not be started. Either the configuration is invalid or the profileris "
                          "not available.",
                          getResultText(hr));
    }
    throw IOException(KX_POS, "CProfilerController::start() failed! ", getResultText(hr));
}

bool CProfilerController::stop()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("stop"));
    }
    const HRESULT hr = getOrbelProfiler()->Control(CONTROL_STOP);
    if (hr == S_OK) {
        return true;
    }
    if (hr == S_FALSE) {
        return false;
    }
    if (hr == ORBEL_E_ERROR) {
        throw IOException(KX_POS, "Profiler can not be stopped.", getResultText(hr));
    }
    throw IOException(KX_POS, "CProfilerController::stop() failed! ", getResultText(hr));
}

CProfilerStatus CProfilerController::getStatus(DWORD flags)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getStatus"), "v",
                     CLogger::obProfilerStatusFlags2str(static_cast<int>(flags)));
    }
    SProfilerStatus status;
    const HRESULT hr = getOrbelProfiler()->GetStatus(flags, &status);
    if (hr != S_OK) {
        throw IOException(KX_POS, "CProfilerController::getStatus() failed! ", getResultText(hr));
    }
    return CProfilerStatus(status);
}

void CProfilerController::logStatistics(const char* operation, const char* format, DWORD a, DWORD b, DWORD c)
{
    if (CLogger* logger = getLogger()) {
        logger->log("statList = kestrix.orbel.StatisticsVector()");
        std::vector<CLogger::Arg> args;
        const std::string letters(format);
        const DWORD numbers[] = {a, b, c};
        for (std::size_t i = 0; i + 1 < letters.size(); ++i) {
            args.emplace_back(numbers[i]);
        }
        args.emplace_back("statList");
        logger->logArgs(instanceId, method(operation), format, args);
    }
}

void CProfilerController::getStatisticsAll(DWORD maxItems, ProfilerStatisticVector& list)
{
    logStatistics("getStatisticsAll", "Dv", maxItems);
    readStatistics(SELECT_ALL, 0, 0, 0, maxItems, list);
}

void CProfilerController::getStatisticsForHandle(DWORD handle, DWORD maxItems, ProfilerStatisticVector& list)
{
    logStatistics("getStatisticsForHandle", "DDv", handle, maxItems);
    readStatistics(SELECT_HANDLE, handle, 0, 0, maxItems, list);
}

void CProfilerController::getStatisticsForTask(DWORD task, DWORD maxItems, ProfilerStatisticVector& list)
{
    logStatistics("getStatisticsForTask", "DDv", task, maxItems);
    readStatistics(SELECT_TASK_ONLY, 0, task, 0, maxItems, list);
}

void CProfilerController::getStatisticsForTask(DWORD handle, DWORD task, DWORD maxItems,
                                               ProfilerStatisticVector& list)
{
    logStatistics("getStatisticsForTask", "DDDv", handle, task, maxItems);
    readStatistics(SELECT_HANDLE_AND_TASK, handle, task, 0, maxItems, list);
}

void CProfilerController::getStatisticsForValue(DWORD handle, DWORD value, DWORD maxItems,
                                                ProfilerStatisticVector& list)
{
    logStatistics("getStatisticsForValue", "DDDv", handle, value, maxItems);
    readStatistics(SELECT_HANDLE_AND_VALUE, handle, 0, value, maxItems, list);
}

void CProfilerController::readStatistics(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD maxItems,
                                         ProfilerStatisticVector& list)
{
    std::vector<SProfilerStatistic> records(maxItems);
    DWORD count = maxItems;
    const HRESULT hr = getOrbelProfiler()->GetStatistics(kind, handle, task, value, &count, records.data());
    if (hr != S_OK) {
        throw IOException(KX_POS, "General error: ", getResultText(hr));
    }
    // A count beyond the room would be the server's fault; it is cut to the room.
    const DWORD filled = count < maxItems ? count : maxItems;
    for (DWORD i = 0; i < filled; ++i) {
        const SProfilerStatistic& r = records[i];
        list.push_back(CProfilerStatistic(r.m_dwHandle, r.m_dwValue, r.m_llTotalTime, r.m_llMaxTime, r.m_llMinTime,
                                          r.m_dwNumHits));
    }
}

void CProfilerController::logHistory(const char* operation, const char* format, DWORD a, DWORD b, DWORD c, DWORD d)
{
    if (CLogger* logger = getLogger()) {
        logger->log("histList = kestrix.orbel.HistoryVector()");
        std::vector<CLogger::Arg> args;
        const std::string letters(format);
        const DWORD numbers[] = {a, b, c, d};
        for (std::size_t i = 0; i + 1 < letters.size(); ++i) {
            args.emplace_back(numbers[i]);
        }
        args.emplace_back("histList");
        logger->logArgs(instanceId, method(operation), format, args);
    }
}

void CProfilerController::getHistoryAll(DWORD startIndex, DWORD maxItems, ProfilerHistoryVector& list)
{
    logHistory("getHistoryAll", "DDv", startIndex, maxItems);
    readHistory(SELECT_ALL, 0, 0, 0, startIndex, maxItems, list);
}

void CProfilerController::getHistoryForHandle(DWORD handle, DWORD startIndex, DWORD maxItems,
                                              ProfilerHistoryVector& list)
{
    logHistory("getHistoryForHandle", "DDDv", handle, startIndex, maxItems);
    readHistory(SELECT_HANDLE, handle, 0, 0, startIndex, maxItems, list);
}

void CProfilerController::getHistoryForTask(DWORD task, DWORD startIndex, DWORD maxItems,
                                            ProfilerHistoryVector& list)
{
    logHistory("getHistoryForTask", "DDDv", task, startIndex, maxItems);
    readHistory(SELECT_TASK, 0, task, 0, startIndex, maxItems, list);
}

void CProfilerController::getHistoryForTask(DWORD handle, DWORD task, DWORD startIndex, DWORD maxItems,
                                            ProfilerHistoryVector& list)
{
    logHistory("getHistoryForTask", "DDDDv", handle, task, startIndex, maxItems);
    readHistory(SELECT_HANDLE_AND_TASK, handle, task, 0, startIndex, maxItems, list);
}

void CProfilerController::getHistoryForValue(DWORD handle, DWORD value, DWORD startIndex, DWORD maxItems,
                                             ProfilerHistoryVector& list)
{
    logHistory("getHistoryForValue", "DDDDv", handle, value, startIndex, maxItems);
    readHistory(SELECT_HANDLE_AND_VALUE, handle, 0, value, startIndex, maxItems, list);
}

void CProfilerController::readHistory(DWORD kind, DWORD handle, DWORD task, DWORD value, DWORD startIndex,
                                      DWORD maxItems, ProfilerHistoryVector& list)
{
    list.clear();
    std::vector<SProfilerHistory> records(maxItems);
    DWORD count = maxItems;
    const HRESULT hr =
        getOrbelProfiler()->GetHistory(kind, handle, task, value, startIndex, &count, records.data());
    if (hr != S_OK) {
        throw IOException(KX_POS, "CProfilerController::getHistory() failed! ", getResultText(hr));
    }
    const DWORD filled = count < maxItems ? count : maxItems;
    for (DWORD i = 0; i < filled; ++i) {
        list.push_back(CProfilerHistory(records[i]));
    }
}

bool CProfilerController::waitUntilLoaded(int timeout, DWORD pollingInterval)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("waitUntilLoaded"));
    }
    Stopwatch stopwatch;
    stopwatch.start();
    CProfilerStatus status = getStatus(0);
    while (status.isLoading()) {
        if (timeout > 0 && stopwatch.getTime() / 10000 > timeout) {
            return false;
        }
        platform::sleep(pollingInterval);
        status = getStatus(0);
    }
    return true;
}

} // namespace kestrix
