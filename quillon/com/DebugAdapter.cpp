#include "com/DebugAdapter.h"

namespace quillon::com {

HRESULT DebugAdapter::GetCPUInfo(kestrix::CCPUInfo*)
{
    return notImplemented("OrbelDebug::GetCPUInfo");
}

HRESULT DebugAdapter::GetAddress(DWORD, const char*, BYTE*, ADDRESS*, DWORD*, kestrix::SType*)
{
    return notImplemented("OrbelDebug::GetAddress");
}

HRESULT DebugAdapter::GetSymbolAtAddress(DWORD, BYTE, ADDRESS, char*, DWORD)
{
    return notImplemented("OrbelDebug::GetSymbolAtAddress");
}

HRESULT DebugAdapter::GetAddressOfSourceLine(DWORD, const char*, int, ADDRESS*, DWORD*)
{
    return notImplemented("OrbelDebug::GetAddressOfSourceLine");
}

HRESULT DebugAdapter::GetSourceLineAtAddress(DWORD, ADDRESS, char*, DWORD, DWORD*)
{
    return notImplemented("OrbelDebug::GetSourceLineAtAddress");
}

HRESULT DebugAdapter::ReadMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*)
{
    return notImplemented("OrbelDebug::ReadMemory");
}

HRESULT DebugAdapter::WriteMemory(DWORD, BYTE, ADDRESS, DWORD, BYTE*, BYTE, BYTE*)
{
    return notImplemented("OrbelDebug::WriteMemory");
}

HRESULT DebugAdapter::ReadRegister(DWORD, const char*, kestrix::SValue*, kestrix::SType*)
{
    return notImplemented("OrbelDebug::ReadRegister");
}

HRESULT DebugAdapter::WriteRegister(DWORD, const char*, const kestrix::SValue*, const kestrix::SType*)
{
    return notImplemented("OrbelDebug::WriteRegister");
}

HRESULT DebugAdapter::ReadValue(DWORD, BYTE, ADDRESS, kestrix::SValue*, const kestrix::SType*)
{
    return notImplemented("OrbelDebug::ReadValue");
}

HRESULT DebugAdapter::WriteValue(DWORD, BYTE, ADDRESS, const kestrix::SValue*, const kestrix::SType*)
{
    return notImplemented("OrbelDebug::WriteValue");
}

HRESULT DebugAdapter::Evaluate(DWORD, const char*, char*, DWORD, kestrix::SValue*, kestrix::SType*)
{
    return notImplemented("OrbelDebug::Evaluate");
}

HRESULT DebugAdapter::Modify(DWORD, const char*, char*, DWORD, const kestrix::SValue*, const kestrix::SType*)
{
    return notImplemented("OrbelDebug::Modify");
}

HRESULT DebugAdapter::GetCPUStatus(DWORD, kestrix::SCPUStatus*)
{
    return notImplemented("OrbelDebug::GetCPUStatus");
}

HRESULT DebugAdapter::Breakpoint(DWORD, DWORD, ADDRESS, const char*, DWORD)
{
    return notImplemented("OrbelDebug::Breakpoint");
}

HRESULT DebugAdapter::RunControl(DWORD, DWORD, DWORD)
{
    return notImplemented("OrbelDebug::RunControl");
}

HRESULT DebugAdapter::Reserved17()
{
    return notImplemented("OrbelDebug2::Reserved17");
}

HRESULT DebugAdapter::BatchAccess(DWORD, const kestrix::SBatchAccessHeader*,
                                  const kestrix::SBatchAccessItem*, kestrix::SBatchAccessItemResult*)
{
    return notImplemented("OrbelDebug2::BatchAccess");
}

HRESULT DebugAdapter::Reserved19()
{
    return notImplemented("OrbelDebug2::Reserved19");
}

HRESULT DebugAdapter::Download(DWORD, char*, DWORD, void*, char*, DWORD)
{
    return notImplemented("OrbelDebug2::Download");
}

HRESULT DebugAdapter::LaunchCore(DWORD, DWORD, char*, DWORD)
{
    return notImplemented("OrbelDebug2::LaunchCore");
}

HRESULT DebugAdapter::SetBP(DWORD, DWORD, ADDRESS, const char*, DWORD, int, const char*)
{
    return notImplemented("OrbelDebug2::SetBP");
}

} // namespace quillon::com
