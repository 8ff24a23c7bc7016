#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CDownloadConfiguration.h"
#include "DownloadListMember.h"
#include "WrapperBase.h"

namespace kestrix {

/// Downloads code to the target: Quillon's configured download, one given file, and the two
/// download lists of the workspace (list type 0 or 1).
class CLoaderController : public WrapperBase {
public:
    /// Room of the file name and options buffers of the list operations.
    static const DWORD LIST_BUFFER_SIZE = 512;
    /// Members a list can show.
    static const int MAX_LIST_MEMBERS = 256;

    explicit CLoaderController(std::shared_ptr<ConnectionMgr> connectionMgr);
    ~CLoaderController() override;

    /// 0 on S_OK, 1 on any other success.
    int download();
    /// 1 on S_FALSE, else 0.
    int targetDownload(const CDownloadConfiguration& config, const std::string& fileName,
                       const std::string& cmdLineOptions);
    int targetDownload(BYTE fileFormat, const std::string& fileName);
    int downloadFromList(DWORD listType, const std::string& fileName, bool isRealTime);
    int downloadFromList(DWORD listType, BYTE fileIndex, bool isRealTime);
    /// File name and options must be shorter than LIST_BUFFER_SIZE.
    void addToDownloadList(DWORD listType, bool isAlternate, const std::string& fileName, const std::string& options);
    int removeFromDownloadList(DWORD listType, BYTE fileIndex);
    void clearDownloadList(DWORD listType);
    /// The list as Quillon has it; the reference is valid until the next call.
    const std::vector<DownloadListMember>& getDownloadList(DWORD listType, bool isAlternate);

#ifndef SWIG
private:
    /// The list bit of `listType`, or IOException for a value other than 0 and 1.
    static DWORD listBit(DWORD listType);
    std::string method(const char* name) const;

    std::vector<DownloadListMember> m_downloadList;
#endif
};

} // namespace kestrix
