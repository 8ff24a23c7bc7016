#include "CBreakpointController.h"

#include "CLogger.h"
#include "CUtil.h"
#include "IOException.h"
#include "OrbelDebug2.h"
#include "OrbelResults.h"

namespace kestrix {

namespace {

typedef OrbelDebugFlags F;

/// Enable or disable bits of an operation.
DWORD enableBits(bool isEnabled)
{
    return isEnabled ? F::bpEnable : F::bpDisable;
}

std::string lineContext(const std::string& prefix, const std::string& fileName, int lineNumber)
{
    return prefix + fileName + ", line = " + CUtil::i2a(lineNumber);
}

} // namespace

CBreakpointController::CBreakpointController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "breakpointCtrl";
}

CBreakpointController::~CBreakpointController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CBreakpointController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CBreakpointController::method(const char* name) const
{
    return std::string("kestrix::CBreakpointController::") + name;
}

int CBreakpointController::check(HRESULT hr, const std::string& context) const
{
    if (hr == S_OK) {
        return 0;
    }
    if (hr == S_FALSE) {
        return 1;
    }
    if (hr == ORBEL_E_ERROR) {
        throw IOException(KX_POS, "Breakpoint could not be set (ORBEL_E_ERROR).\n" + context + "\n",
                          getLastErrorText());
    }
    if (hr == ORBEL_E_BAD_ID) {
        throw IOException(KX_POS, "The address does not evaluate to a location (ORBEL_E_BAD_ID).", getLastErrorText());
    }
    if (hr == ORBEL_E_NO_BREAKPOINT) {
        throw IOException(KX_POS,
                          "No breakpoint was found at the specified location (ORBEL_E_NO_BREAKPOINT)." + context + "\n",
                          getLastErrorText());
    }
    throw IOException(KX_POS, "Error when handling breakpoints: ", getResultText(hr));
}

int CBreakpointController::breakpoint(DWORD command, DWORD memArea, ADDRESS address, const char* name,
                                      DWORD lineOrData, const std::string& context)
{
    const HRESULT hr = getOrbelDebug()->Breakpoint(command, memArea, address, name, lineOrData);
    return check(hr, context);
}

int CBreakpointController::setBP(const std::string& functionName, int hitCount, const std::string& condition)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setBP"), "sis", functionName, hitCount, condition);
    }
    const HRESULT hr =
        getOrbelDebug2()->SetBP(F::sbpSymbol, 0, 0, functionName.c_str(), 0, hitCount, condition.c_str());
    return check(hr, "Function: " + functionName);
}

int CBreakpointController::setBP(int lineNumber, const std::string& fileName, int hitCount,
                                 const std::string& condition)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setBP"), "isis", lineNumber, fileName, hitCount, condition);
    }
    const HRESULT hr = getOrbelDebug2()->SetBP(F::sbpLine, 0, 0, fileName.c_str(), static_cast<DWORD>(lineNumber),
                                               hitCount, condition.c_str());
    return check(hr, lineContext("Line breakpoint: ", fileName, lineNumber));
}

int CBreakpointController::setBP(BYTE memArea, ADDRESS address, int hitCount, const std::string& condition)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setBP"), "iDis", memArea, address, hitCount, condition);
    }
    const HRESULT hr = getOrbelDebug2()->SetBP(F::sbpAddress, memArea, address, nullptr, 0, hitCount, condition.c_str());
    return check(hr, "Mem area: " + CUtil::i2h(static_cast<unsigned int>(memArea)) + ",  address: " +
                         CUtil::i2h(static_cast<unsigned int>(address)));
}

int CBreakpointController::setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, bool isOption,
                                   const std::string& symbol, DWORD data)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setHWBP"), "DDDbsD", flags1, flags2, flags3, isOption, symbol, data);
    }
    const DWORD command = flags1 | flags2 | flags3 | F::bpHWSymbol | (isOption ? DWORD(F::bpHWOption) : DWORD(0));
    const HRESULT hr = getOrbelDebug2()->Breakpoint(command, 0, 0, symbol.c_str(), data);
    return check(hr, "Error in 'setHWBP', symbol: " + symbol);
}

int CBreakpointController::setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, int memArea, ADDRESS address, DWORD data)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setHWBP"), "DDDiDD", flags1, flags2, flags3, memArea, address, data);
    }
    const DWORD command = flags1 | flags2 | flags3 | F::bpHWAddress;
    const HRESULT hr = getOrbelDebug2()->Breakpoint(command, static_cast<DWORD>(memArea), address, nullptr, data);
    return check(hr, "Error in 'setHWBP', address: " + CUtil::i2a(static_cast<unsigned int>(address)));
}

int CBreakpointController::deleteBP(const std::string& functionName)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("deleteBP"), functionName);
    }
    return breakpoint(F::bpDelete | F::bpSymbol, 0, 0, functionName.c_str(), 0,
                      "delete function breakpoint: " + functionName);
}

int CBreakpointController::deleteBP(const std::string& fileName, int lineNumber)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("deleteBP"), "si", fileName, lineNumber);
    }
    return breakpoint(F::bpDelete | F::bpLine, 0, 0, fileName.c_str(), static_cast<DWORD>(lineNumber),
                      lineContext("delete line breakpoint: ", fileName, lineNumber));
}

int CBreakpointController::deleteBP(BYTE memArea, ADDRESS address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("deleteBP"), "iD", memArea, address);
    }
    return breakpoint(F::bpDelete | F::bpAddress, memArea, address, nullptr, 0,
                      "delete address BP: memArea = " + CUtil::i2a(int{memArea}) +
                          ",  address = " + CUtil::i2a(static_cast<unsigned int>(address)));
}

int CBreakpointController::deleteHWBP(const std::string& symbol)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("deleteHWBP"), symbol);
    }
    return breakpoint(F::bpDelete | F::bpHWSymbol, 0, 0, symbol.c_str(), 0, "Delete HW symbol breakpoint: " + symbol);
}

int CBreakpointController::deleteHWBP(BYTE memArea, ADDRESS address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("deleteHWBP"), "iD", memArea, address);
    }
    return breakpoint(F::bpDelete | F::bpHWAddress, memArea, address, nullptr, 0,
                      "Delete address HW BP: memArea = " + CUtil::i2a(int{memArea}) +
                          ",  address = " + CUtil::i2a(static_cast<unsigned int>(address)));
}

int CBreakpointController::deleteAll()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("deleteAll"));
    }
    return breakpoint(F::bpDeleteAll, 0, 0, nullptr, 0, "");
}

int CBreakpointController::setEnabled(bool isEnabled, const std::string& functionName)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setEnabled"), "bs", isEnabled, functionName);
    }
    return breakpoint(enableBits(isEnabled) | F::bpSymbol, 0, 0, functionName.c_str(), 0,
                      "setEnabled(), symbol breakpoint: " + functionName);
}

int CBreakpointController::setEnabled(bool isEnabled, const std::string& fileName, int lineNumber)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setEnabled"), "bsi", isEnabled, fileName, lineNumber);
    }
    return breakpoint(enableBits(isEnabled) | F::bpLine, 0, 0, fileName.c_str(), static_cast<DWORD>(lineNumber),
                      lineContext("Line breakpoint: ", fileName, lineNumber));
}

int CBreakpointController::setEnabled(bool isEnabled, BYTE memArea, ADDRESS address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setEnabled"), "biD", isEnabled, memArea, address);
    }
    return breakpoint(enableBits(isEnabled) | F::bpAddress, memArea, address, nullptr, 0,
                      "setEnabled(), address: " + CUtil::i2a(static_cast<unsigned int>(address)));
}

int CBreakpointController::setHWEnabled(bool isEnabled, const std::string& symbol)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setHWEnabled"), "bs", isEnabled, symbol);
    }
    return breakpoint(enableBits(isEnabled) | F::bpHWSymbol, 0, 0, symbol.c_str(), 0,
                      "setHWEnabled(), symbol breakpoint: " + symbol);
}

int CBreakpointController::setHWEnabled(bool isEnabled, BYTE memArea, ADDRESS address)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("setHWEnabled"), "biD", isEnabled, memArea, address);
    }
    return breakpoint(enableBits(isEnabled) | F::bpHWAddress, memArea, address, nullptr, 0,
                      "setHWEnabled(), address: " + CUtil::i2a(static_cast<unsigned int>(address)));
}

int CBreakpointController::setEnabledAll(bool isEnabled)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("setEnabledAll"), static_cast<DWORD>(isEnabled));
    }
    return breakpoint(enableBits(isEnabled) | F::bpAllSoftware, 0, 0, nullptr, 0, "");
}

int CBreakpointController::setHWEnabledAll(bool isEnabled)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("setHWEnabledAll"), static_cast<DWORD>(isEnabled));
    }
    return breakpoint(enableBits(isEnabled) | F::bpAllHardware, 0, 0, nullptr, 0, "");
}

} // namespace kestrix
