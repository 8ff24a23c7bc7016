#pragma once

#include <cstddef>

#include "OrbelTypes.h"

namespace kestrix {

/// Configuration of OrbelDebug2::Download. m_dwFlags says which fields count
/// (OrbelDebugFlags::EDownloadConfigFlags), ORed with file format bits. A new record is zero but
/// for its size.
struct SDownload {
    DWORD m_dwSize = sizeof(SDownload);
    DWORD m_dwFlags = 0;
    ADDRESS m_aCodeOffset = 0;
    ADDRESS m_aSymbolsOffset = 0;
    BYTE m_byMemArea = 0;
};

static_assert(sizeof(SDownload) == 20, "SDownload is twenty bytes on the interface");
static_assert(offsetof(SDownload, m_aCodeOffset) == 8, "code offset at byte 8");
static_assert(offsetof(SDownload, m_aSymbolsOffset) == 12, "symbols offset at byte 12");
static_assert(offsetof(SDownload, m_byMemArea) == 16, "memory area at byte 16");

} // namespace kestrix
