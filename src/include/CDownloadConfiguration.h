#pragma once

#include "SDownload.h"

namespace kestrix {

/// The download record of the automation interface, with the real-time flag of the call
/// beside it. Each setter marks its field in the record's flags.
class CDownloadConfiguration {
public:
    CDownloadConfiguration() = default;

    void setCodeOffset(ADDRESS offset);
    void setSymbolsOffset(ADDRESS offset);
    void setMemoryArea(BYTE area);
    /// Adds the format bits to the flags; an earlier format stays.
    void setDownloadFileFormat(BYTE format);
    void setRealTimeAccess(bool isRealTimeAccess);
    bool isRealTimeAccess() const { return m_isRealTimeAccess; }

    /// The record, for the interface.
    SDownload* getSDownload() { return &m_download; }
    const SDownload* getSDownload() const { return &m_download; }

private:
    SDownload m_download;
    bool m_isRealTimeAccess = false;
};

} // namespace kestrix
