#include "COrbelClient.h"

#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "OrbelEntryPoints.h"
#include "OrbelFlags.h"
#include "OrbelIdentifiers.h"
#include "Platform.h"

namespace kestrix {

namespace {

// The automation library's file; its messages keep the name "orbel.dll".
const char* const LIBRARY_NAME = "liborbel.so";
const char* const VERSION_LOG = "Brevar/quillon/quillonVersionLog.log";
const size_t VERSION_LOG_LINE = 4096;

// Find an instance or start one, by IPC discovery, with the first visibility.
const DWORD LAUNCH_FLAGS = OrbelFlags::lfFindOrStart | OrbelFlags::lfIPCDiscovery | OrbelFlags::lfVisibility1;

/// Copies `text` into a fixed buffer of `size` bytes, cut to fit and terminated.
void copyText(char* buffer, size_t size, const std::string& text)
{
    std::snprintf(buffer, size, "%s", text.c_str());
}

/// The integer value of an environment variable; false if it is not set.
bool integerFromEnvironment(const char* name, long& value)
{
    const char* text = std::getenv(name);
    if (text == nullptr) {
        return false;
    }
    value = std::strtol(text, nullptr, 10);
    return true;
}

} // namespace

COrbelClient::COrbelClient()
    : m_attachInfo(), m_wClientFlags(0), m_dllPath(), m_isAttached(false), m_hModule(nullptr), m_attachResult(0),
      m_info(), m_infoValid(false), m_state(stateNothingLoaded), m_orbel(nullptr), m_ide(nullptr), m_debug(nullptr),
      m_profiler(nullptr), m_project(nullptr), m_debug2(nullptr), m_ide2(nullptr), m_ide3(nullptr), m_errorCode(0),
      m_errorText()
{
}

COrbelClient::~COrbelClient()
{
    shutdown();
}

void COrbelClient::shutdown()
{
    if (m_state == stateLoaded) {
        unload();
    } else if (m_state == stateInProcess) {
        clearError();
        releaseInterfaces();
        m_state = stateNothingLoaded;
    }
    freeModule();
}

void COrbelClient::setError(int code, const char* format, ...)
{
    char message[ERROR_TEXT_SIZE];
    va_list args;
    va_start(args, format);
    std::vsnprintf(message, sizeof(message), format, args);
    va_end(args);
    m_errorCode = code;
    copyText(m_errorText, sizeof(m_errorText), "E:" + std::to_string(code) + " " + message + "\n");
}

void COrbelClient::clearError()
{
    m_errorCode = 0;
    m_errorText[0] = '\0';
}

const char* COrbelClient::getLastError(int* code) const
{
    if (code != nullptr) {
        *code = m_errorCode;
    }
    return m_errorText;
}

const char* COrbelClient::findOrbelDll()
{
    if (const char* orbelPath = std::getenv("ORBEL_PATH")) {
        useOrbelPath(orbelPath);
        return m_dllPath;
    }
    if (!findFromVersionLog()) {
        return nullptr;
    }
    clearError();
    return m_dllPath;
}

void COrbelClient::useOrbelPath(const char* orbelPath)
{
    std::string path(orbelPath, strnlen(orbelPath, DLL_PATH_SIZE - 1));
    // A value without any separator (the empty one too) names no folder: the library is then
    // given by its bare name, which the loader looks up on the system's search path, as `load`
    // does for a null path.
    const size_t separator = path.find_last_of("\\/");
    path = separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
    copyText(m_dllPath, sizeof(m_dllPath), path + LIBRARY_NAME);
}

bool COrbelClient::findFromVersionLog()
{
    const std::string appData = platform::appDataDir();
    if (appData.empty()) {
        setError(1, "APPDATA environment variable not found");
        return false;
    }
    const std::string logPath = appData + (appData.back() == '/' ? "" : "/") + VERSION_LOG;
    std::ifstream log(logPath);
    if (!log) {
        setError(2, "quillonVersionLog.log can not be opened for reading");
        return false;
    }
    std::string line;
    std::getline(log, line);
    log.close();
    line.resize(std::min(line.size(), VERSION_LOG_LINE));

    m_dllPath[0] = '\0';
    const size_t open = line.find('"');
    const size_t close = open == std::string::npos ? open : line.find('"', open + 1);
    if (line.size() <= 10 || close == std::string::npos) {
        setError(3, "No valid entries found in quillonVersionLog.log");
        return false;
    }
    const std::string path = line.substr(open + 1, close - open - 1) + LIBRARY_NAME;
    // A folder too long for the path buffer is reported as the file system reports such a
    // path: not found, with ENAMETOOLONG, and the whole path in the text.
    if (path.size() >= sizeof(m_dllPath)) {
        setError(4, "%s file not found: errno:%d", path.c_str(), ENAMETOOLONG);
        return false;
    }
    copyText(m_dllPath, sizeof(m_dllPath), path);
    if (access(m_dllPath, F_OK) != 0) {
        setError(4, "%s file not found: errno:%d", m_dllPath, errno);
        return false;
    }
    return true;
}

int COrbelClient::load(const char* path)
{
    if (m_state == stateInProcess) {
        setError(5, "In-process linking not supported");
        return 0;
    }
    if (m_state == stateLoaded) {
        return 1;
    }
    // The path may be this client's own buffer, which is written below.
    const std::string file = path != nullptr ? path : LIBRARY_NAME;
    freeModule();
    m_hModule = platform::loadLibrary(file.c_str());
    if (m_hModule == nullptr) {
        setError(6, "Can not load orbel.dll: '%s'\nSystemError: '%s'", file.c_str(), platform::lastLoadError().c_str());
        return 0;
    }
    auto createObject =
        reinterpret_cast<PFN_ORBEL_CREATE_OBJECT>(platform::getProcAddress(m_hModule, ORBEL_CREATE_OBJECT_NAME));
    if (createObject == nullptr) {
        setError(7, "orbel.dll entry point not found");
        return 0;
    }
    IUnknown* object = nullptr;
    if (createObject(&CLSID_ORBEL, &object) < 0 || object == nullptr) {
        setError(8, "Can not create orbel object");
        return 0;
    }
    void* orbel = nullptr;
    if (object->QueryInterface(IID_Orbel, &orbel) < 0) {
        orbel = nullptr;
    }
    object->Release();
    m_orbel = static_cast<Orbel*>(orbel);
    if (m_orbel == nullptr) {
        setError(9, "Can not obtain Orbel interface");
        return 0;
    }
    m_state = stateLoaded;
    queryInterfaces(m_orbel);

    copyText(m_dllPath, sizeof(m_dllPath), file);
    readInfo();
    return 1;
}

void COrbelClient::readInfo()
{
    m_info.m_dwSize = sizeof(SOrbelInfo);
    m_info.m_dwVersion = 0;
    m_infoValid = false;
    auto getInfo = reinterpret_cast<PFN_ORBEL_GET_INFO>(platform::getProcAddress(m_hModule, ORBEL_GET_INFO_NAME));
    if (getInfo != nullptr) {
        getInfo(&m_info);
        m_infoValid = true;
    }
}

void COrbelClient::freeModule()
{
    if (m_hModule != nullptr) {
        platform::freeLibrary(m_hModule);
        m_hModule = nullptr;
    }
}

void COrbelClient::unload()
{
    if (m_state != stateLoaded) {
        return;
    }
    releaseInterfaces();
    m_state = stateNothingLoaded;
    if (m_hModule != nullptr) {
        detach(0);
        release(m_orbel);
        freeModule();
        m_infoValid = false;
    }
}

void COrbelClient::detach(DWORD flags)
{
    if (m_isAttached && m_orbel != nullptr) {
        m_orbel->Detach(flags);
    }
    m_isAttached = false;
}

void COrbelClient::releaseInProcess()
{
    if (m_state == stateInProcess) {
        releaseInterfaces();
        m_state = stateNothingLoaded;
    }
}

bool COrbelClient::attach(const char* address, WORD port, DWORD channel, DWORD pid)
{
    clearError();
    if (m_orbel == nullptr) {
        setError(12, "Orbel interface not available");
        return false;
    }
    m_attachInfo = SAttachInfo();
    m_attachInfo.m_dwClientCode = m_wClientFlags | SAttachInfo::CLIENT_CODE;
    m_attachInfo.m_dwChannel = channel;
    m_attachInfo.m_dwServerPID = pid;
    m_attachResult = m_orbel->Attach(address, port, &m_attachInfo);
    m_isAttached = m_attachResult >= 0;
    return m_isAttached;
}

std::string COrbelClient::attachMessage() const
{
    const char* message = m_attachInfo.m_szMessage;
    return std::string(message, strnlen(message, sizeof(m_attachInfo.m_szMessage)));
}

bool COrbelClient::attachTcp(const char* address, WORD port)
{
    if (!attach(address, port, SAttachInfo::channelTcp, 0)) {
        if (m_errorCode == 0) {
            setError(13, "Can not attach to quillon: IP:%s TCP:%d, Result:%X:%s", address != nullptr ? address : "NULL",
                     port, static_cast<unsigned>(m_attachResult), attachMessage().c_str());
        }
        return false;
    }
    return true;
}

bool COrbelClient::attachSharedMemory(DWORD pid)
{
    if (!attach(nullptr, 0, SAttachInfo::channelSharedMemory, pid)) {
        if (m_errorCode == 0) {
            setError(13, "Can not attach to quillon: Server PID:%d, Result:%X:%s", static_cast<int>(pid),
                     static_cast<unsigned>(m_attachResult), attachMessage().c_str());
        }
        return false;
    }
    return true;
}

int COrbelClient::launch(const char* workspace)
{
    clearError();
    const char* path = findOrbelDll();
    if (path == nullptr || load(path) == 0) {
        return 0;
    }
    SLaunchInfo info;
    info.m_pszWorkspace = workspace;

    // The variables name an instance to attach to without launching one; the process id first.
    long pid = 0;
    long port = 0;
    const bool fromEnvironment =
        integerFromEnvironment("ORBEL_SHAREDMEM_PID", pid) || integerFromEnvironment("ORBEL_TCP_PORT", port);
    // No instance id is asked for: it reads "NULL".
    const std::string launchText =
        std::string("Can not launch quillon: ID:NULL Workspace:") + (workspace != nullptr ? workspace : "NULL");
    if (!fromEnvironment) {
        if (m_orbel->Launch(LAUNCH_FLAGS, &info) < 0) {
            setError(10, "%s", launchText.c_str());
            unload();
            return 0;
        }
        pid = static_cast<long>(info.m_dwProcessId);
        port = info.m_wTcpPort;
    }
    if (pid != 0 && attachSharedMemory(static_cast<DWORD>(pid))) {
        return 1;
    }
    if (port != 0) {
        if (attachTcp(nullptr, static_cast<WORD>(port))) {
            return 1;
        }
        unload();
        return 0;
    }
    setError(10, "%s", launchText.c_str());
    unload();
    return 0;
}

void COrbelClient::queryInterfaces(Orbel* object)
{
    query(object, IID_OrbelIDE, m_ide);
    query(object, IID_OrbelDebug, m_debug);
    query(object, IID_OrbelProfiler2, m_profiler);
    query(object, IID_OrbelProject, m_project);
    query(object, IID_OrbelDebug2, m_debug2);
    query(object, IID_OrbelIDE2, m_ide2);
    query(object, IID_OrbelIDE3, m_ide3);
}

void COrbelClient::releaseInterfaces()
{
    release(m_project);
    release(m_profiler);
    release(m_debug);
    release(m_ide);
    release(m_debug2);
    release(m_ide2);
    release(m_ide3);
}

} // namespace kestrix
