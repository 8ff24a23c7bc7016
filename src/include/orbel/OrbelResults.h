#pragma once

// Result codes of the automation interface. A failure has the top bit set; what else counts as
// failure is told per operation (several treat S_FALSE or any non-zero code as one).

#include "OrbelTypes.h"

namespace kestrix {

constexpr HRESULT orbelResult(DWORD value)
{
    return static_cast<HRESULT>(value);
}

inline constexpr HRESULT S_OK = orbelResult(0x00000000);
inline constexpr HRESULT S_FALSE = orbelResult(0x00000001);
/// No exact code; the message held by Orbel::GetLastError tells. GetLastError also returns it
/// when it holds an error message.
inline constexpr HRESULT ORBEL_S_MSG_FAIL = orbelResult(0x00040000);
/// Returned by Orbel::GetLastError when the message it holds is a warning.
inline constexpr HRESULT ORBEL_S_WARNING = orbelResult(0x00040009);
inline constexpr HRESULT ORBEL_S_SIZE = orbelResult(0x0004000B);
inline constexpr HRESULT E_NOTIMPL = orbelResult(0x80004001);
/// QueryInterface: the object has no interface of that identifier.
inline constexpr HRESULT E_NOINTERFACE = orbelResult(0x80004002);
inline constexpr HRESULT E_FAIL = orbelResult(0x80004005);
inline constexpr HRESULT ORBEL_E_CONNECT_FAILED = orbelResult(0x80040000);
inline constexpr HRESULT ORBEL_E_VERSION_CONFLICT = orbelResult(0x80040001);
inline constexpr HRESULT ORBEL_E_ALREADY_CONNECTED = orbelResult(0x80040002);
inline constexpr HRESULT ORBEL_E_NOT_CONNECTED = orbelResult(0x80040003);
inline constexpr HRESULT ORBEL_E_FILE_NOT_FOUND = orbelResult(0x80040004);
inline constexpr HRESULT ORBEL_E_CAN_NOT_ACCESS = orbelResult(0x80040005);
inline constexpr HRESULT ORBEL_E_BAD_ID = orbelResult(0x80040006);
inline constexpr HRESULT ORBEL_E_NOT_SIMPLE_TYPE = orbelResult(0x80040007);
inline constexpr HRESULT ORBEL_E_ERROR = orbelResult(0x80040008);
inline constexpr HRESULT ORBEL_E_NO_BREAKPOINT = orbelResult(0x80040009);
inline constexpr HRESULT ORBEL_E_NOT_AVAILABLE = orbelResult(0x8004000A);
inline constexpr HRESULT ORBEL_E_SIZE = orbelResult(0x8004000B);
inline constexpr HRESULT ORBEL_E_ALREADY_EXISTS = orbelResult(0x8004000C);
/// Answer of a RunControl command with wait bits when the target still runs at the end of the
/// wait. The caller hands it back unchanged; it has no text of its own in the client.
inline constexpr HRESULT ORBEL_E_STILL_RUNNING = orbelResult(0x8004000D);
inline constexpr HRESULT E_INVALIDARG = orbelResult(0x80070057);

} // namespace kestrix
