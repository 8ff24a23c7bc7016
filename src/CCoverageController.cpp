#include "CCoverageController.h"

#include <algorithm>

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelCoverage.h"
#include "OrbelDebug.h"
#include "OrbelDebugFlags.h"
#include "OrbelResults.h"
#include "SType.h"

namespace kestrix {

namespace {

typedef OrbelCoverageFlags F;

const char* const CONFIGURATION_FAILED = "Can not set configuration!";
/// Room for the text of the document's last error.
const DWORD ERROR_TEXT_SIZE = 1000;

/// Throws `e` with the data items of a failed coverage call; `info` only where given.
template <class E>
[[noreturn]] void raise(E e, const std::string* info, const std::string& stdError, const std::string& orbelErr,
                        const std::string& fileName)
{
    if (info != nullptr) {
        e.add("info", *info);
    }
    e.add("stdError", stdError).add("orbelErr", orbelErr).add("fileName", fileName);
    throw e;
}

} // namespace

CCoverageController::CCoverageController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& fileName,
                                         const std::string& openMode)
    : CAnalyzerDocController(std::move(connectionMgr), COVERAGE, fileName, openMode)
{
}

CCoverageController::~CCoverageController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CCoverageController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CCoverageController::method(const char* operation)
{
    return std::string("kestrix::CCoverageController::") + operation;
}

std::string CCoverageController::scope2str(int scope)
{
    switch (scope) {
    case csEntireMemory:
        return "CCoverageController::csEntireMemory";
    case csEntireMemoryMinusExcludes:
        return "CCoverageController::csEntireMemoryMinusExcludes";
    case csAllDownloadedCode:
        return "CCoverageController::csAllDownloadedCode";
    case csAllDownloadedCodeMinusExcludes:
        return "CCoverageController::csAllDownloadedCodeMinusExcludes";
    case csIncludesOnly:
        return "CCoverageController::csIncludesOnly";
    default:
        return std::to_string(scope);
    }
}

// ---- availability

DWORD CCoverageController::info(DWORD what)
{
    DWORD value = 0;
    const HRESULT hr = getOrbelCoverage()->GetInfo(m_fileName.c_str(), what, &value);
    if (hr != S_OK) {
        throw IOException(KX_POS, "Can not get coverage info! Info value: ", getResultText(hr));
    }
    return value;
}

bool CCoverageController::isCoverageAvailable()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("isCoverageAvailable"));
    }
    return (info(F::ciAvailability) & F::caCoverage) != 0;
}

bool CCoverageController::isBranchCoverageAvailable()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("isBranchCoverageAvailable"));
    }
    return (info(F::ciAvailability) & F::caBranchCoverage) != 0;
}

bool CCoverageController::isHWCoverageAvailable()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("isHWCoverageAvailable"));
    }
    return info(F::ciKind) == F::ckHardware;
}

bool CCoverageController::isOfflineCoverageAvailable()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("isOfflineCoverageAvailable"));
    }
    return info(F::ciKind) == F::ckOffline;
}

// ---- configuration

void CCoverageController::setConfigurationItem(DWORD item, const std::string& text, DWORD value)
{
    check(getOrbelCoverage()->SetConfiguration(m_fileName.c_str(), item, text.c_str(), value), CONFIGURATION_FAILED);
}

void CCoverageController::setConfiguration(ECoverageScope scope, DWORD option1, DWORD option2)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setConfiguration"), "vDD", scope2str(scope), option1, option2);
    }
    switch (scope) {
    case csEntireMemory:
        setConfigurationItem(F::cciScope, "", F::cssEntireMemory);
        break;
    case csAllDownloadedCode:
        setConfigurationItem(F::cciScope, "", F::cssAllDownloadedCode);
        break;
    case csEntireMemoryMinusExcludes:
        setConfigurationItem(F::cciScope, "", F::cssWithRangeset);
        setConfigurationItem(F::cciScopeRangeset, "", F::cssEntireMemoryMinusExcludes);
        break;
    case csAllDownloadedCodeMinusExcludes:
        setConfigurationItem(F::cciScope, "", F::cssWithRangeset);
        setConfigurationItem(F::cciScopeRangeset, "", F::cssDownloadedCodeMinusExcludes);
        break;
    case csIncludesOnly:
        setConfigurationItem(F::cciScope, "", F::cssWithRangeset);
        setConfigurationItem(F::cciScopeRangeset, "", F::cssIncludesOnly);
        break;
    default:
        throw IllegalArgumentException(KX_POS, "Invalid scope value: ", static_cast<int>(scope));
    }
    setConfigurationItem(F::cciOption1, "", option1);
    setConfigurationItem(F::cciOption2, "", option2);
}

bool CCoverageController::createRangeset(const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("createRangeset"), name);
    }
    const HRESULT hr = getOrbelCoverage()->SetConfiguration(m_fileName.c_str(), F::cciCreateRangeset, name.c_str(), 0);
    if (hr == S_FALSE) {
        return true;
    }
    check(hr, CONFIGURATION_FAILED);
    return false;
}

void CCoverageController::setActiveRangeset(const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("setActiveRangeset"), name);
    }
    setConfigurationItem(F::cciActiveRangeset, name, 0);
}

void CCoverageController::setActiveRangeset(DWORD index)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("setActiveRangeset"), index);
    }
    setConfigurationItem(F::cciActiveRangeset, "", index);
}

void CCoverageController::addRangesetItem(const char* operation, DWORD firstItem, ERangeItem item,
                                          const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method(operation), "vs", CLogger::obCoverageRangeItem2str(item), name);
    }
    const int kind = static_cast<int>(item);
    if (kind < rsFolder || kind > rsItem) {
        throw IllegalArgumentException(KX_POS, "Invalid range item type: ", kind);
    }
    setConfigurationItem(firstItem + static_cast<DWORD>(kind), name, 0);
}

void CCoverageController::addRangesetExclude(ERangeItem item, const std::string& name)
{
    addRangesetItem("addRangesetExclude", F::cciExcludeFolder, item, name);
}

void CCoverageController::addRangesetInclude(ERangeItem item, const std::string& name)
{
    addRangesetItem("addRangesetInclude", F::cciIncludeFolder, item, name);
}

void CCoverageController::clearConfiguration()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("clearConfiguration"));
    }
    setConfigurationItem(F::cciClear, "", 0);
}

// ---- results

void CCoverageController::getRanges(DWORD kind, const std::string& name, DWORD rangeType, RangeVector& ranges,
                                    DWORD maxRanges)
{
    RangeVector found(maxRanges);
    DWORD count = maxRanges;
    check(getOrbelCoverage()->GetRanges(m_fileName.c_str(), kind, &count, found.data(), name.c_str(), rangeType),
          "Can not get coverage ranges! ");
    // A count beyond the room given would be the server's fault; it is cut to the room.
    found.resize(std::min(count, maxRanges));
    ranges.clear();
    ranges.insert(ranges.end(), found.begin(), found.end());
}

void CCoverageController::getActiveRanges(RangeVector& ranges, DWORD maxRanges)
{
    if (CLogger* logger = getLogger()) {
        logger->log("rangeVector = kestrix.orbel.RangeVector()");
        logger->logf(instanceId, method("getActiveRanges"), "vD", "rangeVector", maxRanges);
    }
    getRanges(F::crkActive, "", 0, ranges, maxRanges);
}

void CCoverageController::resolveRange(DWORD rangeType, const std::string& name, RangeVector& ranges,
                                       DWORD maxRanges)
{
    if (CLogger* logger = getLogger()) {
        logger->log("rangeVector = kestrix.orbel.RangeVector()");
        logger->logf(instanceId, method("resolveRange"), "vsvD",
                     CLogger::obCoverageRangesTypes2str(static_cast<int>(rangeType)), name, "rangeVector", maxRanges);
    }
    getRanges(F::crkResolve, name, rangeType, ranges, maxRanges);
}

void CCoverageController::getCoverageBitmap(DWORD start, DWORD end, VectorBYTE& bitmap)
{
    if (CLogger* logger = getLogger()) {
        logger->log("bitmapVector = kestrix.orbel.VectorBYTE()");
        logger->logf(instanceId, method("getCoverageBitmap"), "DDv", start, end, "bitmapVector");
    }
    if (end < start) {
        throw IllegalArgumentException(KX_POS, "Start address is greater than end address: ", static_cast<int>(start),
                                       static_cast<int>(end));
    }
    bitmap.clear();
    if (start == end) {
        return;
    }
    const DWORD size = end - start + 1;
    if (size == 0) {
        // The whole address space: its size does not fit the interface's size word.
        throw IllegalArgumentException(KX_POS, "Address range is too large for a coverage bitmap: ",
                                       static_cast<int>(start), static_cast<int>(end));
    }
    VectorBYTE bytes(size);
    check(getOrbelCoverage()->GetBitmap(m_fileName.c_str(), 0, start, end, size, bytes.data()),
          "Can not get coverage bitmap! ");
    bitmap.insert(bitmap.end(), bytes.begin(), bytes.end());
}

DWORD CCoverageController::getCoverageStatistics(DWORD type, DWORD start, DWORD end)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getCoverageStatistics"), "vDD",
                     CLogger::obCoverageStatisticsFlags2str(static_cast<int>(type)), start, end);
    }
    DWORD value = 0;
    check(getOrbelCoverage()->GetStatistics(m_fileName.c_str(), type, start, end, &value),
          "Can not get coverage statistics! ");
    return value;
}

CCoverageStatistic CCoverageController::getStatisticsForSymbol(const std::string& symbol)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getStatisticsForSymbol"), symbol);
    }
    BYTE memArea = 0;
    ADDRESS start = 0;
    DWORD size = 0;
    SType type;
    const HRESULT hr =
        getOrbelDebug()->GetAddress(OrbelDebugFlags::gafFunctions, symbol.c_str(), &memArea, &start, &size, &type);
    if (hr == S_FALSE) {
        throw IllegalArgumentException(KX_POS, "Symbol '" + symbol + "' not found!")
            .add("error", getResultText(hr))
            .add("stdErr", "Command getSymbolInfo() failed!");
    }
    if (hr != S_OK) {
        throw IOException(KX_POS, "'getSymbolInfo(" + symbol + ")' command failed: ", getResultText(hr));
    }
    const DWORD end = start + size - 1;
    DWORD values[F::csftBranchesBoth + 1] = {};
    for (DWORD kind = F::csftBytes; kind <= F::csftBranchesBoth; ++kind) {
        values[kind] = getCoverageStatistics(kind, start, end);
    }
    return CCoverageStatistic(values[F::csftBytes], values[F::csftBytesExec], values[F::csftBranches],
                              values[F::csftBranchesExec], values[F::csftBranchesTaken],
                              values[F::csftBranchesNotTaken], values[F::csftBranchesBoth]);
}

// ---- the check of every result

void CCoverageController::check(HRESULT hr, const std::string& message)
{
    if (hr == S_OK) {
        return;
    }
    DWORD errorClass = F::cecNone;
    std::string text = "GetLastError failed!";
    std::vector<char> buffer(ERROR_TEXT_SIZE + 1, '\0');
    if (getOrbelCoverage()->GetLastError(m_fileName.c_str(), 0, &errorClass, buffer.data(), ERROR_TEXT_SIZE) ==
        S_OK) {
        text = buffer.data();
    } else {
        // What a failed call left in the class says nothing.
        errorClass = F::cecNone;
    }
    const std::string stdError = getResultText(hr);
    switch (errorClass) {
    case F::cecNone:
        raise(IllegalStateException(KX_POS, "kestrix.test call failed, but GetLastError() didn't return error code!"),
              &message, stdError, text, m_fileName);
    case F::cecInternal:
        raise(IllegalArgumentException(KX_POS, "Internal error"), &message, stdError, text, m_fileName);
    case F::cecIllegalState:
        raise(IllegalStateException(KX_POS, message), &message, stdError, text, m_fileName);
    default:
        raise(IOException(KX_POS, message), nullptr, stdError, text, m_fileName);
    }
}

} // namespace kestrix
