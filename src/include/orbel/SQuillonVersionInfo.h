#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Block of OrbelIDE3::GetQuillonVersion. The caller sets the request bits in m_dwFlags
/// (OrbelIDEFlags::EVersionRequest); on return the same word says which fields were filled.
struct SQuillonVersionInfo {
    DWORD m_dwFlags = 0;
    BYTE m_byMajor = 0;
    BYTE m_byMinor = 0;
    WORD m_wBuild = 0;
    /// Zero-terminated folder asked for by one of the folder requests.
    char m_szPath[512] = {};
    /// Handle of Quillon's main window.
    DWORD m_dwMainWindow = 0;
    DWORD m_dwNumClients = 0;
};

static_assert(sizeof(SQuillonVersionInfo) == 528, "SQuillonVersionInfo is 528 bytes on the interface");
static_assert(offsetof(SQuillonVersionInfo, m_byMajor) == 4, "major at byte 4");
static_assert(offsetof(SQuillonVersionInfo, m_byMinor) == 5, "minor at byte 5");
static_assert(offsetof(SQuillonVersionInfo, m_wBuild) == 6, "build at byte 6");
static_assert(offsetof(SQuillonVersionInfo, m_szPath) == 8, "folder at byte 8");
static_assert(offsetof(SQuillonVersionInfo, m_dwMainWindow) == 520, "window handle at byte 520");
static_assert(offsetof(SQuillonVersionInfo, m_dwNumClients) == 524, "number of clients at byte 524");

} // namespace kestrix
