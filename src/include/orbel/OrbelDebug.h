#pragma once

#include "CCPUInfo.h"
#include "IUnknown.h"
#include "OrbelDebugFlags.h"
#include "SCPUStatus.h"
#include "SType.h"
#include "SValue.h"

namespace kestrix {

/// The target: symbols and lines, memory, registers, expressions, run control, breakpoints.
class OrbelDebug : public IUnknown {
public:
    /// Always fills info; its result is not looked at.
    virtual HRESULT GetCPUInfo(CCPUInfo* info) = 0;
    /// Resolves name (OrbelDebugFlags::EGetAddressFlags, may be ORed with access flags).
    /// S_FALSE: no such symbol.
    virtual HRESULT GetAddress(DWORD flags, const char* name, BYTE* memArea, ADDRESS* address,
                               DWORD* sizeMAUs, SType* type) = 0;
    /// Name of the symbol at an address (OrbelDebugFlags::ESymbolFlags). S_FALSE: none.
    virtual HRESULT GetSymbolAtAddress(DWORD symbolFlags, BYTE memArea, ADDRESS address, char* buffer,
                                       DWORD size) = 0;
    /// Code addresses of a source line; *count is the room of addresses in, the number filled
    /// out. S_FALSE: no code on that line.
    virtual HRESULT GetAddressOfSourceLine(DWORD reserved, const char* fileName, int line,
                                           ADDRESS* addresses, DWORD* count) = 0;
    /// Source file and line of an address. S_FALSE: no debug information there.
    virtual HRESULT GetSourceLineAtAddress(DWORD reserved, ADDRESS address, char* fileName, DWORD size,
                                           DWORD* line) = 0;
    /// Reads bytesPerMAU * numMAUs bytes into data and one result byte per MAU.
    virtual HRESULT ReadMemory(DWORD accessFlags, BYTE memArea, ADDRESS address, DWORD numMAUs,
                               BYTE* data, BYTE bytesPerMAU, BYTE* accessResults) = 0;
    /// Writes bytesPerMAU * numMAUs bytes of data; one result byte per MAU out.
    virtual HRESULT WriteMemory(DWORD accessFlags, BYTE memArea, ADDRESS address, DWORD numMAUs,
                                BYTE* data, BYTE bytesPerMAU, BYTE* accessResults) = 0;
    virtual HRESULT ReadRegister(DWORD accessFlags, const char* name, SValue* value, SType* type) = 0;
    /// ORBEL_S_SIZE: the bit size of type does not match the register.
    virtual HRESULT WriteRegister(DWORD accessFlags, const char* name, const SValue* value,
                                  const SType* type) = 0;
    /// Reads a value of the caller's type at an address.
    virtual HRESULT ReadValue(DWORD accessFlags, BYTE memArea, ADDRESS address, SValue* value,
                              const SType* type) = 0;
    virtual HRESULT WriteValue(DWORD accessFlags, BYTE memArea, ADDRESS address, const SValue* value,
                               const SType* type) = 0;
    /// flags: access flags ORed with OrbelDebugFlags::EEvaluate. The buffer gets the value's text,
    /// or the reason of a failure.
    virtual HRESULT Evaluate(DWORD flags, const char* expression, char* buffer, DWORD size,
                             SValue* value, SType* type) = 0;
    /// Assigns value/type, or with efValueAsText (value and type null) the text in buffer. The
    /// buffer gets a result text, or the reason of a failure.
    virtual HRESULT Modify(DWORD flags, const char* expression, char* buffer, DWORD size,
                           const SValue* value, const SType* type) = 0;
    /// flags: OrbelDebugFlags::ECPUStatusFlags. Never blocks.
    virtual HRESULT GetCPUStatus(DWORD flags, SCPUStatus* status) = 0;
    /// command: OrbelDebugFlags::EBreakpoint. symbolOrFile may be null; lineOrData is the line
    /// of a line breakpoint or the data word of a hardware one.
    virtual HRESULT Breakpoint(DWORD command, DWORD memArea, ADDRESS address, const char* symbolOrFile,
                               DWORD lineOrData) = 0;
    /// command: OrbelDebugFlags::ERunControl, ORed with EWaitBits where it takes them.
    virtual HRESULT RunControl(DWORD command, DWORD second, DWORD third) = 0;

protected:
    ~OrbelDebug() = default;
};

} // namespace kestrix
