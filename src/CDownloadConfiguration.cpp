#include "CDownloadConfiguration.h"

#include "OrbelDebugFlags.h"

namespace kestrix {

void CDownloadConfiguration::setCodeOffset(ADDRESS offset)
{
    m_download.m_aCodeOffset = offset;
    m_download.m_dwFlags |= OrbelDebugFlags::dcCodeOffsetValid;
}

void CDownloadConfiguration::setSymbolsOffset(ADDRESS offset)
{
    m_download.m_aSymbolsOffset = offset;
    m_download.m_dwFlags |= OrbelDebugFlags::dcSymbolsOffsetValid;
}

void CDownloadConfiguration::setMemoryArea(BYTE area)
{
    m_download.m_byMemArea = area;
    m_download.m_dwFlags |= OrbelDebugFlags::dcMemAreaValid;
}

void CDownloadConfiguration::setDownloadFileFormat(BYTE format)
{
    m_download.m_dwFlags |= format;
}

void CDownloadConfiguration::setRealTimeAccess(bool isRealTimeAccess)
{
    m_isRealTimeAccess = isRealTimeAccess;
}

} // namespace kestrix
