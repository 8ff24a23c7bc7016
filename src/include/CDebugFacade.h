#pragma once

#include <memory>
#include <string>

#include "CAddressController.h"
#include "CBreakpointController.h"
#include "CDataController.h"
#include "CExecutionController.h"
#include "CLoaderController.h"

namespace kestrix {

/// One object for the everyday debug operations: a controller of each kind on one connection,
/// each operation forwarded to one of them.
class CDebugFacade {
public:
    explicit CDebugFacade(std::shared_ptr<ConnectionMgr> mgr);
    virtual ~CDebugFacade();

    CAddressController& getAddressController() { return m_addressController; }
    CBreakpointController& getBreakpointController() { return m_breakpointController; }
    CDataController& getDataController() { return m_dataController; }
    CExecutionController& getExecutionController() { return m_executionController; }
    CLoaderController& getLoaderController() { return m_loaderController; }

    // Address controller.
    VectorDWORD getAddressOfSourceLine(const std::string& fileName, int lineNumber);
    int getCodeArea(bool isPhysical);
    CMemAddress getFunctionAddress(const std::string& name);
    CMemAddress getLabelAddress(const std::string& name);
    CLineLocation getSourceLineAtAddress(ADDRESS address);
    std::string getSymbolAtAddress(DWORD symbolFlags, BYTE memArea, ADDRESS address);
    CSymbolInfo getSymbolInfo(DWORD flags, const std::string& name);
    CMemAddress getVariableAddress(const std::string& name);

    // Breakpoint controller.
    int deleteAll();
    int deleteBP(const std::string& functionName);
    int deleteBP(const std::string& fileName, int lineNumber);
    int deleteBP(BYTE memArea, ADDRESS address);
    int deleteHWBP(const std::string& symbol);
    int deleteHWBP(BYTE memArea, ADDRESS address);
    int setBP(const std::string& functionName, int hitCount = 0, const std::string& condition = "");
    int setBP(int lineNumber, const std::string& fileName, int hitCount = 0, const std::string& condition = "");
    int setBP(BYTE memArea, ADDRESS address, int hitCount = 0, const std::string& condition = "");
    int setEnabled(bool isEnabled, const std::string& functionName);
    int setEnabled(bool isEnabled, const std::string& fileName, int lineNumber);
    int setEnabled(bool isEnabled, BYTE memArea, ADDRESS address);
    int setEnabledAll(bool isEnabled);
    int setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, bool isOption, const std::string& symbol, DWORD data);
    int setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, int memArea, ADDRESS address, DWORD data);
    int setHWEnabled(bool isEnabled, const std::string& symbol);
    int setHWEnabled(bool isEnabled, BYTE memArea, ADDRESS address);
    int setHWEnabledAll(bool isEnabled);

    // Data controller.
    CValueType evaluate(DWORD accessFlags, const std::string& expression);
    CValueType evaluate(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression);
    CCPUInfo getCPUInfo();
    BYTE getMemoryAreaBytesPerMAU(int memArea);
    std::string modify(DWORD accessFlags, const std::string& expression, const CValueType& value);
    std::string modify(DWORD accessFlags, const std::string& expression, const std::string& value);
    std::string modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression, const CValueType& value);
    std::string modify(DWORD accessFlags, DWORD evaluateFlags, const std::string& expression,
                       const std::string& value);
    VectorBYTE readMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs, BYTE bytesPerMAU);
    CValueType readRegister(DWORD accessFlags, const std::string& name);
    CValueType readValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const SType& type);
    VectorBYTE writeMemory(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, DWORD aNumMAUs, BYTE bytesPerMAU,
                           const VectorBYTE& buff);
    void writeRegister(DWORD accessFlags, const std::string& name, const CValueType& value);
    void writeValue(DWORD accessFlags, BYTE memArea, ADDRESS aAddress, const CValueType& value);

    // Execution controller.
    CPUStatus getCPUStatus(bool isStopReasonRequested = true);
    void gotoAddress(BYTE memArea, ADDRESS address);
    void gotoFunction(const std::string& functionName);
    void reset();
#ifdef SWIG
    // The short forms come first in the managed binding.
    HRESULT run();
    HRESULT run(int waitMode);
    HRESULT runUntilAddress(BYTE memArea, ADDRESS address);
    HRESULT runUntilAddress(BYTE memArea, ADDRESS address, int waitMode);
    HRESULT runUntilFunction(const std::string& functionName);
    HRESULT runUntilFunction(const std::string& functionName, int waitMode);
    HRESULT runUntilReturn();
    HRESULT runUntilReturn(int waitMode);
#else
    HRESULT run(int waitMode = 0);
    HRESULT runUntilAddress(BYTE memArea, ADDRESS address, int waitMode = 0);
    HRESULT runUntilFunction(const std::string& functionName, int waitMode = 0);
    HRESULT runUntilReturn(int waitMode = 0);
#endif
    void setPollingEnabled(bool isEnabled);
    void stepHigh();
    void stepInst();
    void stepOverHigh();
    void stepOverInst();
    void stop();
    bool waitUntilStopped(int timeout = 0, DWORD pollingInterval = 100);
    bool waitWhileRunning(int timeout, DWORD pollingInterval = 100);

    // Loader controller.
    int download();

#ifndef SWIG
private:
    CAddressController m_addressController;
    CBreakpointController m_breakpointController;
    CDataController m_dataController;
    CExecutionController m_executionController;
    CLoaderController m_loaderController;
#endif
};

} // namespace kestrix
