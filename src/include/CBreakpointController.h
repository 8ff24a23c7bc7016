#pragma once

#include <memory>
#include <string>

#include "WrapperBase.h"

namespace kestrix {

/// Sets, deletes, enables and disables execution and hardware breakpoints by symbol, source
/// line or address. Quillon keeps the breakpoints; each operation answers 0 for S_OK and 1 for
/// S_FALSE, and raises on any other result.
class CBreakpointController : public WrapperBase {
public:
    explicit CBreakpointController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CBreakpointController() override;

    int setBP(const std::string& functionName, int hitCount = 0, const std::string& condition = "");
    int setBP(int lineNumber, const std::string& fileName, int hitCount = 0, const std::string& condition = "");
    int setBP(BYTE memArea, ADDRESS address, int hitCount = 0, const std::string& condition = "");

    int setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, bool isOption, const std::string& symbol, DWORD data);
    int setHWBP(DWORD flags1, DWORD flags2, DWORD flags3, int memArea, ADDRESS address, DWORD data);

    int deleteBP(const std::string& functionName);
    int deleteBP(const std::string& fileName, int lineNumber);
    int deleteBP(BYTE memArea, ADDRESS address);

    int deleteHWBP(const std::string& symbol);
    int deleteHWBP(BYTE memArea, ADDRESS address);

    int deleteAll();

    int setEnabled(bool isEnabled, const std::string& functionName);
    int setEnabled(bool isEnabled, const std::string& fileName, int lineNumber);
    int setEnabled(bool isEnabled, BYTE memArea, ADDRESS address);

    int setHWEnabled(bool isEnabled, const std::string& symbol);
    int setHWEnabled(bool isEnabled, BYTE memArea, ADDRESS address);

    int setEnabledAll(bool isEnabled);
    int setHWEnabledAll(bool isEnabled);

#ifndef SWIG
private:
    /// Breakpoint of the debug interface, its result checked.
    int breakpoint(DWORD command, DWORD memArea, ADDRESS address, const char* name, DWORD lineOrData,
                   const std::string& context);
    int check(HRESULT hr, const std::string& context) const;
    std::string method(const char* name) const;
#endif
};

} // namespace kestrix
