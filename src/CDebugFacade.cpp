#include "CDebugFacade.h"

namespace kestrix {

CDebugFacade::CDebugFacade(std::shared_ptr<ConnectionMgr> mgr)
    : m_addressController(mgr),
      m_breakpointController(mgr),
      m_dataController(mgr),
      m_executionController(mgr),
      m_loaderController(mgr)
{
}

CDebugFacade::~CDebugFacade() = default;

VectorDWORD CDebugFacade::getAddressOfSourceLine(const std::string& fileName, int lineNumber)
{
    return m_addressController.getAddressOfSourceLine(fileName, lineNumber);
}

int CDebugFacade::getCodeArea(bool isPhysical)
{
    return m_addressController.getCodeArea(isPhysical);
}

CMemAddress CDebugFacade::getFunctionAddress(const std::string& name)
{
    return m_addressController.getFunctionAddress(name);
}

CMemAddress CDebugFacade::getLabelAddress(const std::string& name)
{
    return m_addressController.getLabelAddress(name);
}

CLineLocation CDebugFacade::getSourceLineAtAddress(ADDRESS address)
{
    return m_addressController.getSourceLineAtAddress(address);
}

std::string CDebugFacade::getSymbolAtAddress(DWORD symbolFlags, BYTE memArea, ADDRESS address)
{
    return m_addressController.getSymbolAtAddress(symbolFlags, memArea, address);
}

CSymbolInfo CDebugFacade::getSymbolInfo(DWORD flags, const std::string& name)
{
    return m_addressController.getSymbolInfo(flags, name);
}

CMemAddress CDebugFacade::getVariableAddress(const std::string& name)
{
    return m_addressController.getVariableAddress(name);
}

int CDebugFacade::deleteAll()
{
    return m_breakpointController.deleteAll();
}

int CDebugFacade::deleteBP(const std::string& functionName)
{
    return m_breakpointController.deleteBP(functionName);
}

int CDebugFacade::deleteBP(const std::string& fileName, int lineNumber)
{
    return m_breakpointController.deleteBP(fileName, lineNumber);
}

int CDebugFacade::deleteBP(BYTE memArea, ADDRESS address)
{
    return m_breakpointController.deleteBP(memArea, address);
}

int CDebugFacade::deleteHWBP(const std::string& symbol)
{
    return m_breakpointController.deleteHWBP(symbol);
}

int CDebugFacade::deleteHWBP(BYTE memArea, ADDRESS address)
{
    return m_breakpointController.deleteHWBP(memArea, address);
}

int CDebugFacade::setBP(const std::string& functionName, int hitCount, const std::string& condition)
{
    return m_breakpointController.setBP(functionName, hitCount, condition);
}

int CDebugFacade::setBP(int lineNumber, const std::string& fileName, int hitCount, const std::string& condition)
{
    return m_breakpointController.setBP(lineNumber, fileName, hitCount, condition);
}

int CDebugFacade::setBP(BYTE memArea, ADDRESS address, int hitCount, const std::string& condition)
{
    return m_breakpointController.setBP(memArea, address, hitCount, condition);
}

int CDebugFacade::setEnabled(bool isEnabled, const std::string& functionName)
{
    return m_breakpointController.setEnabled(isEnabled, functionName);
}

int CDebugFacade::setEnabled(bool isEnabled, const std::string& fileName, int lineNumber)
{
    return m_breakpointController.setEnabled(isEnabled, fileName, lineNumber);
}

int CDebugFacade::setEnabled(bool isEnabled, BYTE memArea, ADDRESS address)
{
    return m_breakpointController.setEnabled(isEnabled, memArea, address);
}

int CDebugFacade::setEnabledAll(bool isEnabled)
{
    return m_breakpointController.setEnabledAll(isEnabled);
}

int CDebugFacade::setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, bool isOption, const std::string& symbol, DWORD data)
{
    return m_breakpointController.setHWBP(flags1, flags2, flags3, isOption, symbol, data);
}

int CDebugFacade::setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, int memArea, ADDRESS address, DWORD data)
{
    return m_breakpointController.setHWBP(flags1, flags2, flags3, memArea, address, data);
}

int CDebugFacade::setHWEnabled(bool isEnabled, const std::string& symbol)
{
    return m_breakpointController.setHWEnabled(isEnabled, symbol);
}

int CDebugFacade::setHWEnabled(bool isEnabled, BYTE memArea, ADDRESS address)
{
    return m_breakpointController.setHWEnabled(isEnabled, memArea, address);
}

int CDebugFacade::setHWEnabledAll(bool isEnabled)
{
    return m_breakpointController.setHWEnabledAll(isEnabled);
}

CValueType CDebugFacade::evaluate(DWORD accessFlags, const std::string& expression)
{
    return m_dataController.evaluate(accessFlags, expression);
}

CValueType CDebugFacade::evaluate(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression)
{
    return m_dataController.evaluate(accessFlags, evaluateFlags, expression);
}

CCPUInfo CDebugFacade::getCPUInfo()
{
    return m_dataController.getCPUInfo();
}

BYTE CDebugFacade::getMemoryAreaBytesPerMAU(int memArea)
{
    return m_dataController.getMemoryAreaBytesPerMAU(memArea);
}

std::string CDebugFacade::modify(DWORD accessFlags, const std::string& expression, const CValueType& value)
{
    return m_dataController.modify(accessFlags, expression, value);
}

std::string CDebugFacade::modify(DWORD accessFlags, const std::string& expression, const std::string& value)
{
    return m_dataController.modify(accessFlags, expression, value);
}

std::string CDebugFacade::modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression, const CValueType& value)
{
    return m_dataController.modify(accessFlags, evaluateFlags, expression, value);
}

std::string CDebugFacade::modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression, const std::string& value)
{
    return m_dataController.modify(accessFlags, evaluateFlags, expression, value);
}

VectorBYTE CDebugFacade::readMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs, BYTE bytesPerMAU)
{
    return m_dataController.readMemory(accessFlags, memArea, aAddress, aNumMAUs, bytesPerMAU);
}

CValueType CDebugFacade::readRegister(DWORD accessFlags, const std::string& name)
{
    return m_dataController.readRegister(accessFlags, name);
}

CValueType CDebugFacade::readValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const SType& type)
{
    return m_dataController.readValue(accessFlags, memArea, aAddress, type);
}

VectorBYTE CDebugFacade::writeMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs, BYTE bytesPerMAU, const VectorBYTE& buff)
{
    return m_dataController.writeMemory(accessFlags, memArea, aAddress, aNumMAUs, bytesPerMAU, buff);
}

void CDebugFacade::writeRegister(DWORD accessFlags, const std::string& name, const CValueType& value)
{
    m_dataController.writeRegister(accessFlags, name, value);
}

void CDebugFacade::writeValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const CValueType& value)
{
    m_dataController.writeValue(accessFlags, memArea, aAddress, value);
}

CPUStatus CDebugFacade::getCPUStatus(bool isStopReasonRequested)
{
    return m_executionController.getCPUStatus(isStopReasonRequested);
}

void CDebugFacade::gotoAddress(BYTE memArea, ADDRESS address)
{
    m_executionController.gotoAddress(memArea, address);
}

void CDebugFacade::gotoFunction(const std::string& functionName)
{
    m_executionController.gotoFunction(functionName);
}

void CDebugFacade::reset()
{
    m_executionController.reset();
}

HRESULT CDebugFacade::run(int waitMode)
{
    return m_executionController.run(waitMode);
}

HRESULT CDebugFacade::runUntilAddress(BYTE memArea, ADDRESS address, int waitMode)
{
    return m_executionController.runUntilAddress(memArea, address, waitMode);
}

HRESULT CDebugFacade::runUntilFunction(const std::string& functionName, int waitMode)
{
    return m_executionController.runUntilFunction(functionName, waitMode);
}

HRESULT CDebugFacade::runUntilReturn(int waitMode)
{
    return m_executionController.runUntilReturn(waitMode);
}

void CDebugFacade::setPollingEnabled(bool isEnabled)
{
    m_executionController.setPollingEnabled(isEnabled);
}

void CDebugFacade::stepHigh()
{
    m_executionController.stepHigh();
}

void CDebugFacade::stepInst()
{
    m_executionController.stepInst();
}

void CDebugFacade::stepOverHigh()
{
    m_executionController.stepOverHigh();
}

void CDebugFacade::stepOverInst()
{
    m_executionController.stepOverInst();
}

void CDebugFacade::stop()
{
    m_executionController.stop();
}

bool CDebugFacade::waitUntilStopped(int timeout, DWORD pollingInterval)
{
    return m_executionController.waitUntilStopped(timeout, pollingInterval);
}

bool CDebugFacade::waitWhileRunning(int timeout, DWORD pollingInterval)
{
    return m_executionController.waitWhileRunning(timeout, pollingInterval);
}

int CDebugFacade::download()
{
    return m_loaderController.download();
}

} // namespace kestrix
