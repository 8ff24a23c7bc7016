#pragma once

#include <memory>
#include <string>

#include "CMemAddress.h"
#include "CPUStatus.h"
#include "WrapperBase.h"

namespace kestrix {

/// Runs, stops, steps and resets the target and tells its state. Each command is one call of
/// the run control of the debug interface; the waits poll the CPU state.
class CExecutionController : public WrapperBase {
public:
    explicit CExecutionController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CExecutionController() override;

#ifdef SWIG
    // The short forms come first in the managed binding.
    HRESULT run();
    HRESULT run(int waitMode);
    HRESULT runUntilReturn();
    HRESULT runUntilReturn(int waitMode);
    HRESULT runUntilAddress(BYTE memArea, ADDRESS address);
    HRESULT runUntilAddress(BYTE memArea, ADDRESS address, int waitMode);
    HRESULT runUntilFunction(const std::string& functionName);
    HRESULT runUntilFunction(const std::string& functionName, int waitMode);
    HRESULT resetAndRun();
    HRESULT resetAndRun(int waitMode);
    OrbelDebug* getOrbelDebug() const;
#else
    /// The commands that set the target going return ORBEL_E_STILL_RUNNING unraised, S_OK as 0.
    HRESULT run(int waitMode = 0);
    HRESULT runUntilReturn(int waitMode = 0);
    HRESULT runUntilAddress(BYTE memArea, ADDRESS address, int waitMode = 0);
    HRESULT runUntilFunction(const std::string& functionName, int waitMode = 0);
    HRESULT resetAndRun(int waitMode = 0);
#endif

    void gotoAddress(BYTE memArea, ADDRESS address);
    void gotoFunction(const std::string& functionName);
    void reset();
    void stop();
    void stepHigh();
    void stepOverHigh();
    void stepInst();
    void stepOverInst();

    CPUStatus getCPUStatus(bool isStopReasonRequested = true);
    void setPollingEnabled(bool isEnabled);

    /// True once the CPU is stopped, false after `timeout` ms (none if 0 or below).
    bool waitUntilStopped(int timeout = 0, DWORD pollingInterval = 100);
    /// True once the CPU is in any state but running, false after `timeout` ms (none if 0 or below).
    bool waitWhileRunning(int timeout, DWORD pollingInterval = 100);

    /// Command bits of a wait mode.
    static DWORD waitBits(int waitMode);

#ifndef SWIG
private:
    HRESULT goCommand(DWORD command, DWORD second, DWORD third, int waitMode, const char* failure);
    void command(DWORD command, DWORD second, DWORD third, const char* failure);
    CMemAddress functionAddress(const std::string& functionName);
    template <class EndCondition>
    bool waitFor(const char* name, int timeout, DWORD pollingInterval, EndCondition hasEnded);
#endif
};

} // namespace kestrix
