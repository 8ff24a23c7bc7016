#include "CExecutionController.h"

#include "CLogger.h"
#include "IOException.h"
#include "OrbelDebug.h"
#include "OrbelResults.h"
#include "Platform.h"
#include "Stopwatch.h"

namespace kestrix {

namespace {

const char* const CLASS_PREFIX = "kestrix::CExecutionController::";

std::string method(const char* name)
{
    return std::string(CLASS_PREFIX) + name;
}

} // namespace

CExecutionController::CExecutionController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "execCtrl";
}

CExecutionController::~CExecutionController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CExecutionController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

DWORD CExecutionController::waitBits(int waitMode)
{
    switch (waitMode) {
    case 0:
        return 0;
    case 1:
        return OrbelDebugFlags::wmWait1;
    case 3:
        return OrbelDebugFlags::wmWait3;
    case 4:
        return OrbelDebugFlags::wmWait4;
    default:
        return OrbelDebugFlags::wmWait2;
    }
}

HRESULT CExecutionController::goCommand(DWORD command, DWORD second, DWORD third, int waitMode, const char* failure)
{
    const HRESULT hr = getOrbelDebug()->RunControl(command | waitBits(waitMode), second, third);
    if (hr == S_OK) {
        return 0;
    }
    if (hr == ORBEL_E_STILL_RUNNING) {
        return hr;
    }
    throw IOException(KX_POS, failure, getResultText(hr));
}

void CExecutionController::command(DWORD command, DWORD second, DWORD third, const char* failure)
{
    const HRESULT hr = getOrbelDebug()->RunControl(command, second, third);
    if (hr != S_OK) {
        throw IOException(KX_POS, failure, getResultText(hr));
    }
}

HRESULT CExecutionController::run(int waitMode)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("run"), "i", waitMode);
    }
    return goCommand(OrbelDebugFlags::rcRun, 0, 0, waitMode, "'run' command failed: ");
}

HRESULT CExecutionController::runUntilReturn(int waitMode)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("runUntilReturn"), "i", waitMode);
    }
    return goCommand(OrbelDebugFlags::rcRunUntilReturn, 0, 0, waitMode, "'runUntilReturn' command failed: ");
}

HRESULT CExecutionController::runUntilAddress(BYTE memArea, ADDRESS address, int waitMode)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("runUntilAddress"), "iDi", memArea, address, waitMode);
    }
    return goCommand(OrbelDebugFlags::rcRunUntilAddress, memArea, address, waitMode,
                     "'runUntilAddress' command failed: ");
}

HRESULT CExecutionController::runUntilFunction(const std::string& functionName, int waitMode)
{
    if (CLogger* logger = getLogger()) {
        logger->logc(instanceId + method("runUntilFunction") + "('" + functionName + "', " +
                     std::to_string(waitMode) + ")");
    }
    const CMemAddress location = functionAddress(functionName);
    return runUntilAddress(location.getMemArea(), location.getAddress(), waitMode);
}

void CExecutionController::gotoAddress(BYTE memArea, ADDRESS address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("gotoAddress"), "iD", memArea, address);
    }
    command(OrbelDebugFlags::rcSetExecutionPoint, memArea, address, "'Goto Address' command failed: ");
}

void CExecutionController::gotoFunction(const std::string& functionName)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("gotoFunction"), functionName);
    }
    const CMemAddress location = functionAddress(functionName);
    gotoAddress(location.getMemArea(), location.getAddress());
}

CMemAddress CExecutionController::functionAddress(const std::string& functionName)
{
    BYTE memArea = 0;
    ADDRESS address = 0;
    DWORD size = 0;
    SType type;
    const HRESULT hr =
        getOrbelDebug()->GetAddress(OrbelDebugFlags::gafFunctions, functionName.c_str(), &memArea, &address, &size, &type);
    if (hr != S_OK) {
        throw IOException(KX_POS, "'GetAddress(" + functionName + ")' command failed: ", getResultText(hr));
    }
    return CMemAddress(memArea, address);
}

void CExecutionController::reset()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("reset"));
    }
    command(OrbelDebugFlags::rcReset, 0, 0, "'Reset' command failed: ");
}

HRESULT CExecutionController::resetAndRun(int waitMode)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("resetAndRun"), "i", waitMode);
    }
    return goCommand(OrbelDebugFlags::rcResetAndRun, 0, 0, waitMode, "'ResetAbdRun' command failed: ");
}

void CExecutionController::stop()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("stop"));
    }
    command(OrbelDebugFlags::rcStop, 0, 0, "'Stop' command failed: ");
}

void CExecutionController::stepHigh()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("stepHigh"));
    }
    command(OrbelDebugFlags::rcStepHigh, 0, 0, "'Step High' command failed: ");
}

void CExecutionController::stepOverHigh()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("stepOverHigh"));
    }
    command(OrbelDebugFlags::rcStepOverHigh, 0, 0, "'Step Over High' command failed: ");
}

void CExecutionController::stepInst()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("stepInst"));
    }
    command(OrbelDebugFlags::rcStepInst, 0, 0, "'Step Inst' command failed: ");
}

void CExecutionController::stepOverInst()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("stepOverInst"));
    }
    command(OrbelDebugFlags::rcStepOverInst, 0, 0, "'Step Over Inst' command failed: ");
}

CPUStatus CExecutionController::getCPUStatus(bool isStopReasonRequested)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getCPUStatus"), static_cast<DWORD>(isStopReasonRequested));
    }
    CPUStatus status(isStopReasonRequested);
    const DWORD flags = isStopReasonRequested ? OrbelDebugFlags::csfStopReason : OrbelDebugFlags::csfNone;
    const HRESULT hr = getOrbelDebug()->GetCPUStatus(flags, status.getStructPtr());
    if (hr != S_OK) {
        throw IOException(KX_POS, "Can not get CPU status: ", getResultText(hr));
    }
    return status;
}

void CExecutionController::setPollingEnabled(bool isEnabled)
{
    // The value stays out of the script.
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("setPollingEnabled"));
    }
    command(isEnabled ? OrbelDebugFlags::rcPollingOn : OrbelDebugFlags::rcPollingOff, 0, 0,
            "'Set polling enabled' command failed: ");
}

template <class EndCondition>
bool CExecutionController::waitFor(const char* name, int timeout, DWORD pollingInterval, EndCondition hasEnded)
{
    Stopwatch stopwatch;
    stopwatch.start();
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method(name), "iD", timeout, pollingInterval);
    }
    CPUStatus status = getCPUStatus(false);
    while (!hasEnded(status)) {
        if (timeout > 0 && stopwatch.getTime() / 10000 > timeout) {
            return false;
        }
        platform::sleep(pollingInterval);
        status = getCPUStatus(false);
    }
    return true;
}

bool CExecutionController::waitUntilStopped(int timeout, DWORD pollingInterval)
{
    return waitFor("waitUntilStopped", timeout, pollingInterval,
                   [](const CPUStatus& status) { return status.isStopped(); });
}

bool CExecutionController::waitWhileRunning(int timeout, DWORD pollingInterval)
{
    return waitFor("waitWhileRunning", timeout, pollingInterval,
                   [](const CPUStatus& status) { return !status.isRunning(); });
}

} // namespace kestrix
