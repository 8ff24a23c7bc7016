#include "CLoaderController.h"

#include <cstring>

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelDebug2.h"
#include "OrbelResults.h"

namespace kestrix {

namespace {

typedef OrbelDebugFlags F;

/// A zero-terminated, writable copy of a text.
std::vector<char> writableText(const std::string& text)
{
    std::vector<char> bytes(text.begin(), text.end());
    bytes.push_back('\0');
    return bytes;
}

/// A zeroed buffer of `size` bytes that holds `text`, which must fit with its zero.
std::vector<char> listBuffer(const std::string& text, DWORD size, const char* name)
{
    if (text.size() >= size) {
        throw IllegalArgumentException(KX_POS, std::string("'") + name + "' does not fit the buffer of " + std::to_string(size) +
                                      " bytes. size = " + std::to_string(text.size()));
    }
    std::vector<char> buffer(size, '\0');
    std::memcpy(buffer.data(), text.data(), text.size());
    return buffer;
}

std::string bufferText(const std::vector<char>& buffer)
{
    return std::string(buffer.data(), strnlen(buffer.data(), buffer.size()));
}

} // namespace

CLoaderController::CLoaderController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "loaderCtrl";
}

CLoaderController::~CLoaderController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CLoaderController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CLoaderController::method(const char* name) const
{
    return std::string("kestrix::CLoaderController::") + name;
}

DWORD CLoaderController::listBit(DWORD listType)
{
    if (listType > 1) {
        throw IOException(KX_POS, "The 'listType' parameter contains invalid value!")
            .add("listType", static_cast<int>(listType));
    }
    return listType == 1 ? DWORD(F::dlList1) : DWORD(0);
}

int CLoaderController::download()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("download"));
    }
    const HRESULT hr = getOrbelDebug()->RunControl(F::rcDownload, 0, 0);
    if (hr < 0) {
        throw IOException(KX_POS, "Error in download(): ", getResultText(hr));
    }
    return hr == S_OK ? 0 : 1;
}

int CLoaderController::targetDownload(const CDownloadConfiguration& config, const std::string& fileName,
                                      const std::string& cmdLineOptions)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("targetDownload"), "ss", fileName, cmdLineOptions);
    }
    std::vector<char> file = writableText(fileName);
    std::vector<char> options = writableText(cmdLineOptions);
    const DWORD command = F::dlFile | (config.isRealTimeAccess() ? DWORD(F::dlRealTime) : DWORD(0));
    SDownload record = *config.getSDownload();
    const HRESULT hr = getOrbelDebug2()->Download(command, file.data(), static_cast<DWORD>(file.size()), &record,
                                                  options.data(), static_cast<DWORD>(options.size()));
    if (hr == S_FALSE) {
        return 1;
    }
    if (hr < 0) {
        throw IOException(KX_POS, "Target download failed!")
            .add("errorCode", getResultText(hr))
            .add("error", getLastErrorText())
            .add("file", fileName)
            .add("cmdLineOptions", cmdLineOptions);
    }
    return 0;
}

int CLoaderController::targetDownload(BYTE fileFormat, const std::string& fileName)
{
    CDownloadConfiguration config;
    config.setCodeOffset(0);
    config.setSymbolsOffset(0);
    config.setDownloadFileFormat(fileFormat);
    return targetDownload(config, fileName, "");
}

int CLoaderController::downloadFromList(DWORD listType, const std::string& fileName, bool isRealTime)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("downloadFromList"), "ibs", listType, isRealTime, fileName);
    }
    const DWORD command = listBit(listType) | F::dlFromList | (isRealTime ? DWORD(F::dlRealTime) : DWORD(0));
    std::vector<char> file = writableText(fileName);
    SDownload record;
    const HRESULT hr =
        getOrbelDebug2()->Download(command, file.data(), static_cast<DWORD>(file.size()), &record, nullptr, 0);
    if (hr == S_FALSE) {
        return 1;
    }
    if (hr < 0) {
        throw IOException(KX_POS, "Target download failed!")
            .add("errorCode", getResultText(hr))
            .add("error", getLastErrorText())
            .add("listType", static_cast<int>(listType))
            .add("file", fileName)
            .add("isRealTime", isRealTime ? 1 : 0);
    }
    return 0;
}

int CLoaderController::downloadFromList(DWORD listType, BYTE fileIndex, bool isRealTime)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("downloadFromList"), "ibi", listType, isRealTime, fileIndex);
    }
    const DWORD command =
        listBit(listType) | F::dlFromList | (isRealTime ? DWORD(F::dlRealTime) : DWORD(0)) | fileIndex;
    SDownload record;
    const HRESULT hr = getOrbelDebug2()->Download(command, nullptr, 0, &record, nullptr, 0);
    if (hr == S_FALSE) {
        return 1;
    }
    if (hr < 0) {
        throw IOException(KX_POS, "Target download failed!")
            .add("errorCode", getResultText(hr))
            .add("error", getLastErrorText())
            .add("listType", static_cast<int>(listType))
            .add("fileIndex", int{fileIndex})
            .add("isRealTime", isRealTime ? 1 : 0);
    }
    return 0;
}

void CLoaderController::addToDownloadList(DWORD listType, bool isAlternate, const std::string& fileName,
                                          const std::string& options)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("addToDownloadList"), "ibss", listType, isAlternate, fileName, options);
    }
    const DWORD command = listBit(listType) | F::dlAddToList | (isAlternate ? DWORD(F::dlAlternate) : DWORD(0));
    std::vector<char> file = listBuffer(fileName, LIST_BUFFER_SIZE, "fileName");
    std::vector<char> optionText = listBuffer(options, LIST_BUFFER_SIZE, "options");
    SDownload record;
    record.m_dwFlags = F::dcAddToList;
    const HRESULT hr =
        getOrbelDebug2()->Download(command, file.data(), LIST_BUFFER_SIZE, &record, optionText.data(), LIST_BUFFER_SIZE);
    if (hr != S_OK) {
        throw IOException(KX_POS, "Get files for download failed! ", getResultText(hr) + getLastErrorText());
    }
}

int CLoaderController::removeFromDownloadList(DWORD listType, BYTE fileIndex)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("removeFromDownloadList"), "ii", listType, fileIndex);
    }
    const DWORD command = listBit(listType) | F::dlRemoveFromList | fileIndex;
    char empty[] = "";
    SDownload record;
    const HRESULT hr = getOrbelDebug2()->Download(command, empty, 0, &record, empty, 0);
    if (hr == S_FALSE) {
        return 1;
    }
    if (hr < 0) {
        throw IOException(KX_POS, "Remove files from download list failed!")
            .add("stdError", getResultText(hr))
            .add("lastError", getLastErrorText())
            .add("listType", static_cast<int>(listType))
            .add("fileIndex", int{fileIndex});
    }
    return 0;
}

void CLoaderController::clearDownloadList(DWORD listType)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("clearDownloadList"), "D", listType);
    }
    const DWORD command = listBit(listType) | F::dlClearList;
    SDownload record;
    const HRESULT hr = getOrbelDebug2()->Download(command, nullptr, 0, &record, nullptr, 0);
    if (hr != S_OK) {
        throw IOException(KX_POS, "Remove files from download list failed!")
            .add("stdError", getResultText(hr))
            .add("lastError", getLastErrorText())
            .add("listType", static_cast<int>(listType));
    }
}

const std::vector<DownloadListMember>& CLoaderController::getDownloadList(DWORD listType, bool isAlternate)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("getDownloadList"), "Db", listType, isAlternate);
    }
    const DWORD command = listBit(listType) | F::dlGetMember | (isAlternate ? DWORD(F::dlAlternate) : DWORD(0));
    m_downloadList.clear();
    OrbelDebug2* debug = getOrbelDebug2();
    for (int index = 0; index < MAX_LIST_MEMBERS; ++index) {
        std::vector<char> file(LIST_BUFFER_SIZE, '\0');
        std::vector<char> options(LIST_BUFFER_SIZE, '\0');
        SDownload record;
        const HRESULT hr = debug->Download(command | static_cast<DWORD>(index), file.data(), LIST_BUFFER_SIZE, &record,
                                           options.data(), LIST_BUFFER_SIZE);
        if (hr == S_FALSE) {
            break;
        }
        if (hr < 0) {
            throw IOException(KX_POS, "Get files for download failed! ", getResultText(hr) + getLastErrorText());
        }
        m_downloadList.push_back(DownloadListMember{bufferText(file), bufferText(options)});
    }
    return m_downloadList;
}

} // namespace kestrix
