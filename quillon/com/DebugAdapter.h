#pragma once

#include "OrbelDebug2.h"
#include "com/Adapter.h"

namespace quillon::com {

/// `OrbelDebug2`: debug services: memory, registers, expressions, run control, breakpoints, symbols and download. Every operation answers E_NOTIMPL with a message that names it
/// until the service behind it exists.
class DebugAdapter final : public Adapter<kestrix::OrbelDebug2> {
public:
    using Adapter::Adapter;

    HRESULT GetCPUInfo(kestrix::CCPUInfo*) override;
    HRESULT GetAddress(DWORD, const char*, BYTE*, ADDRESS*, DWORD*, kestrix::SType*) override;
    HRESULT GetSymbolAtAddress(DWORD, BYTE, ADDRESS, char*, DWORD) override;
    HRESULT GetAddressOfSourceLine(DWORD, const char*, int, ADDRESS*, DWORD*) override;
    HRESULT GetSourceLineAtAddress(DWORD, ADDRESS, char*, DWORD, DWORD*) override;
    HRESULT ReadMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*) override;
    HRESULT WriteMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*) override;
    HRESULT ReadRegister(DWORD, const char*, kestrix::SValue*, kestrix::SType*) override;
    HRESULT WriteRegister(DWORD, const char*, const kestrix::SValue*, const kestrix::SType*) override;
    HRESULT ReadValue(DWORD, BYTE, ADDRESS, kestrix::SValue*, const kestrix::SType*) override;
    HRESULT WriteValue(DWORD, BYTE, ADDRESS, const kestrix::SValue*, const kestrix::SType*) override;
    HRESULT Evaluate(DWORD, const char*, char*, DWORD, kestrix::SValue*, kestrix::SType*) override;
    HRESULT Modify(DWORD, const char*, char*, DWORD, const kestrix::SValue*, const kestrix::SType*) override;
    HRESULT GetCPUStatus(DWORD, kestrix::SCPUStatus*) override;
    HRESULT Breakpoint(DWORD, DWORD, ADDRESS, const char*, DWORD) override;
    HRESULT RunControl(DWORD, DWORD, DWORD) override;
    HRESULT Reserved17() override;
    HRESULT BatchAccess(DWORD, const kestrix::SBatchAccessHeader*, const kestrix::SBatchAccessItem*,
                        kestrix::SBatchAccessItemResult*) override;
    HRESULT Reserved19() override;
    HRESULT Download(DWORD, char*, DWORD, void*, char*, DWORD) override;
    HRESULT LaunchCore(DWORD, DWORD, char*, DWORD) override;
    HRESULT SetBP(DWORD, DWORD, ADDRESS, const char*, DWORD, int, const char*) override;
};

} // namespace quillon::com
