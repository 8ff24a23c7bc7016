#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// One instance found by Orbel::Launch in enumeration mode. The texts are the library's and
/// valid only during the call of the enumerator.
struct SInstanceEnumInfo {
    const char* m_pszInstanceId = nullptr;
    const char* m_pszWorkspace = nullptr;
    WORD m_wTcpPort = 0;
};

/// Called by the library during Launch, on the caller's thread, once for each instance found,
/// with the context of SLaunchInfo.
typedef void (*PFN_INSTANCE_ENUMERATOR)(void* context, const SInstanceEnumInfo* info);

} // namespace kestrix
