#pragma once

#include "OrbelTypes.h"
#include "SInstanceEnumInfo.h"

namespace kestrix {

/// Block given to Orbel::Launch. Holds pointers, so it has the natural layout of the platform;
/// the field order and widths are those of the interface. Texts are null when empty.
struct SLaunchInfo {
    /// Address of the discovery target; null for the default.
    const char* m_pszAddress = nullptr;
    const char* m_pszInstanceId = nullptr;
    /// Workspace file to find or open.
    const char* m_pszWorkspace = nullptr;
    /// Command line of a new instance.
    const char* m_pszCmdLineParams = nullptr;
    WORD m_wUdpDiscoveryPort = 0;
    /// Out: TCP port of the instance found or started.
    WORD m_wTcpPort = 0;
    /// Called for each instance in enumeration mode.
    PFN_INSTANCE_ENUMERATOR m_pfnInstanceEnumerator = nullptr;
    void* m_pContext = nullptr;
    /// Out: process id of the instance, for the shared-memory channel; 0 if none.
    DWORD m_dwProcessId = 0;
    BYTE m_abyReserved[64] = {};
};

} // namespace kestrix
