#include "ConnectionMgr.h"

#include <string>

#include "COrbelClientEclipse.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"
#include "OrbelDebug2.h"
#include "OrbelFlags.h"
#include "OrbelResults.h"
#include "Platform.h"
#include "SInstanceEnumInfo.h"
#include "SLaunchInfo.h"
#include "WrapperBase.h"

namespace kestrix {

namespace {

const char* const LOG_VAR = "connectionMgr";
const char* const ALREADY_CONNECTED = "Orbel client is already connected! Disconnect first!";
const DWORD LAST_ERROR_BUFFER = 1024;
const DWORD LAUNCH_CORE_KIND = 1;
const DWORD LAUNCH_CORE_BUFFER = 4100;

/// Null for an empty text, as the automation interface takes it.
const char* textOrNull(const std::string& text)
{
    return text.empty() ? nullptr : text.c_str();
}

/// The request of a discovery: the texts of the configuration and the address.
SLaunchInfo launchInfo(const std::string& address, const CConnectionConfig& config)
{
    SLaunchInfo info;
    info.m_pszAddress = textOrNull(address);
    info.m_pszInstanceId = textOrNull(config.getInstanceId());
    info.m_pszWorkspace = textOrNull(config.getWorkspace());
    info.m_pszCmdLineParams = textOrNull(config.getCmdLineParams());
    info.m_wUdpDiscoveryPort = static_cast<WORD>(config.getUdpDiscoveryPort());
    return info;
}

/// Discovery and wait-time bits of the flags of `Launch`.
DWORD discoveryFlags(DWORD mode, const CConnectionConfig& config)
{
    DWORD flags = mode | (static_cast<DWORD>(config.getWaitTime()) & OrbelFlags::lfWaitTimeMask);
    if (config.isUseIPCDiscovery()) {
        flags |= OrbelFlags::lfIPCDiscovery;
    }
    return flags;
}

} // namespace

ConnectionMgr::ConnectionMgr()
    : m_client(new COrbelClientEclipse()), m_isExternalClient(false), m_isConnected(false), m_isDllLoaded(false)
{
    // A failure stays in the client until a connection reports it.
    const char* path = m_client->findOrbelDll();
    m_dllPath = path != nullptr ? path : "";
}

ConnectionMgr::ConnectionMgr(const std::string& dllPath)
    : m_client(new COrbelClientEclipse()), m_isExternalClient(false), m_isConnected(false), m_dllPath(dllPath),
      m_isDllLoaded(false)
{
}

ConnectionMgr::ConnectionMgr(COrbelClient* client, int /*unused*/)
    : m_client(client), m_isExternalClient(true), m_isConnected(false), m_isDllLoaded(false)
{
    // Every operation goes through the client: without one this object could do nothing.
    if (client == nullptr) {
        throw IllegalArgumentException(KX_POS, "Orbel client is null!");
    }
}

ConnectionMgr::~ConnectionMgr()
{
    try {
        if (m_logger) {
            m_logger->logc("Dtor: ~ConnectionMgr");
        }
        if (!m_isExternalClient) {
            disconnect(0);
        }
    } catch (...) {
        // Nothing leaves a destructor; the client is released below all the same.
    }
    if (!m_isExternalClient) {
        delete m_client;
    }
}

void ConnectionMgr::log(const std::string& method)
{
    if (m_logger) {
        m_logger->log(LOG_VAR, method);
    }
}

void ConnectionMgr::checkNotConnected() const
{
    if (m_isConnected) {
        throw IllegalStateException(KX_POS, ALREADY_CONNECTED);
    }
}

void ConnectionMgr::connectMRU(const std::string& workspace)
{
    log("kestrix::ConnectionMgr::connectMRU");
    checkNotConnected();
    if (m_client->launch(textOrNull(workspace)) == 0) {
        int code = 0;
        const std::string text = m_client->getLastError(&code);
        throw IOException(KX_POS, std::to_string(code) + ": Can not connect to kestrix.orbel:", text);
    }
    m_isConnected = true;
}

void ConnectionMgr::connect(const std::string& address, int tcpPort)
{
    log("kestrix::ConnectionMgr::connect");
    checkNotConnected();
    loadLibrary();
    if (!m_client->attachTcp(textOrNull(address), static_cast<WORD>(tcpPort))) {
        int code = 0;
        const std::string text = m_client->getLastError(&code);
        throw IOException(KX_POS, "Can not connect to quillon over TCP/IP!")
            .add("errorCode", code)
            .add("errorMsg", text)
            .add("address", address.empty() ? "NULL" : address)
            .add("tcpPort", tcpPort);
    }
    m_isConnected = true;
}

void ConnectionMgr::loadLibrary()
{
    // A failed connectMRU unloads the client's library behind this object: load it again then.
    if (m_isDllLoaded && m_client->getState() == COrbelClient::stateLoaded) {
        return;
    }
    if (m_client->load(textOrNull(m_dllPath)) == 0) {
        int code = 0;
        const std::string text = m_client->getLastError(&code);
        throw IOException(KX_POS, std::to_string(code) + ": Can not load orbel DLL from path: '" + m_dllPath + "'",
                          text);
    }
    m_isDllLoaded = true;
}

int ConnectionMgr::discover(DWORD mode, const std::string& address, const CConnectionConfig& config)
{
    loadLibrary();
    SLaunchInfo info = launchInfo(address, config);
    const DWORD flags =
        discoveryFlags(mode, config) | (static_cast<DWORD>(config.getVisibility()) & OrbelFlags::lfVisibilityMask);
    const HRESULT hr = m_client->getOrbel()->Launch(flags, &info);
    if (hr >= 0) {
        return info.m_wTcpPort;
    }
    if (hr == ORBEL_E_ERROR) {
        throw IOException(KX_POS, "Discovery could not be initiated! ", platform::getLastError())
            .add("address", address)
            .add("connectionConfig", config.toString());
    }
    if (hr == ORBEL_E_BAD_ID) {
        throw IOException(KX_POS, "Enumeration was requested, but m_pfnInstanceEnumerator is NULL! ",
                          platform::getLastError())
            .add("address", address)
            .add("connectionConfig", config.toString());
    }
    return -1;
}

int ConnectionMgr::findExistingInstance(const std::string& address, const CConnectionConfig& config)
{
    if (m_logger) {
        m_logger->log(LOG_VAR, "kestrix::ConnectionMgr::findExistingInstance", address);
    }
    return discover(OrbelFlags::lfFindExisting, address, config);
}

int ConnectionMgr::startNewInstance(const CConnectionConfig& config)
{
    log("kestrix::ConnectionMgr::startNewInstance");
    const int port = discover(OrbelFlags::lfStartNew, "", config);
    if (port < 0) {
        throw IOException(KX_POS, "Instance could not be started! ", platform::getLastError())
            .add("connectionConfig", config.toString());
    }
    return port;
}

int ConnectionMgr::findOrStartInstance(const CConnectionConfig& config)
{
    log("kestrix::ConnectionMgr::findOrStartInstance");
    const int port = discover(OrbelFlags::lfFindOrStart, "", config);
    if (port < 0) {
        throw IOException(KX_POS, "Instance not found and could not be started! ", platform::getLastError())
            .add("connectionConfig", config.toString());
    }
    return port;
}

void ConnectionMgr::enumerateQuillonInstances(const std::string& address, const CConnectionConfig& config,
                                              VectorQuillonInstanceInfo& instances)
{
    loadLibrary();
    SLaunchInfo info = launchInfo(address, config);
    info.m_pfnInstanceEnumerator = &ConnectionMgr::appendInstance;
    info.m_pContext = &instances;
    // The visibility bits do not apply to an enumeration.
    const HRESULT hr = m_client->getOrbel()->Launch(discoveryFlags(OrbelFlags::lfEnumerate, config), &info);
    if (hr >= 0) {
        return;
    }
    const char* text = hr == ORBEL_E_ERROR    ? "Discovery could not be initiated!"
                       : hr == ORBEL_E_BAD_ID ? "Enumeration was requested, but m_pfnInstanceEnumerator is NULL!"
                                              : "Enumeration failed!";
    throw IOException(KX_POS, text).add("address", address).add("connectionConfig", config.toString());
}

void ConnectionMgr::appendInstance(void* context, const SInstanceEnumInfo* info)
{
    // Called from the automation library: nothing may leave this function.
    try {
        if (context == nullptr || info == nullptr) {
            return;
        }
        auto* instances = static_cast<VectorQuillonInstanceInfo*>(context);
        instances->emplace_back(info->m_pszWorkspace != nullptr ? info->m_pszWorkspace : "",
                                info->m_pszInstanceId != nullptr ? info->m_pszInstanceId : "", info->m_wTcpPort);
    } catch (...) {
        // Out of memory: the instance is left out.
    }
}

void ConnectionMgr::disconnect(DWORD flags)
{
    if (m_logger) {
        m_logger->log(LOG_VAR, "kestrix::ConnectionMgr::disconnect", flags);
        m_logger->log("print 'Logged script disconnected!'   # see ConnectionMgr::disconnect()");
    }
    if (m_isConnected) {
        m_client->detach(flags);
    }
    m_isConnected = false;
}

void ConnectionMgr::inProcessDisconnect()
{
    log("kestrix::ConnectionMgr::inProcessDisconnect");
    if (m_isConnected) {
        m_client->clearError();
        m_client->releaseInProcess();
    }
    m_isConnected = false;
}

std::string ConnectionMgr::launchCore(DWORD index)
{
    if (m_logger) {
        m_logger->log(LOG_VAR, "kestrix::ConnectionMgr::launchCore", index);
    }
    OrbelDebug2* debug2 = m_client->getDebug2();
    if (debug2 == nullptr) {
        throw IOException(KX_POS, WrapperBase::DEBUG_NOT_AVAILABLE);
    }
    std::string buffer(LAUNCH_CORE_BUFFER, '\0');
    const HRESULT hr = debug2->LaunchCore(LAUNCH_CORE_KIND, index, &buffer[0], LAUNCH_CORE_BUFFER);
    if (hr != S_OK) {
        const std::string resultText = WrapperBase(shared_from_this()).getResultText(hr);
        throw IOException(KX_POS, "Can not launch another core." + resultText + ":  idx = ", static_cast<int>(index));
    }
    buffer.back() = '\0';
    return buffer.c_str();
}

void ConnectionMgr::initLogger(const std::string& id, const std::string& fileName, CLogger::ELanguage language)
{
    // Writes no line of its own; a failing logger leaves everything as it was.
    auto logger = std::make_shared<CLogger>(fileName, language);
    m_logger = logger;
    m_id = id;
}

CLogger* ConnectionMgr::getLogger() const
{
    return m_logger.get();
}

const std::string& ConnectionMgr::getId() const
{
    return m_id;
}

COrbelClient* ConnectionMgr::getConnection() const
{
    return m_client;
}

bool ConnectionMgr::isConnected() const
{
    return m_isConnected;
}

HRESULT ConnectionMgr::lastError(std::string& message) const
{
    Orbel* orbel = m_client->getOrbel();
    if (orbel == nullptr) {
        return S_OK;
    }
    std::string buffer(LAST_ERROR_BUFFER, '\0');
    const HRESULT hr = orbel->GetLastError(0, &buffer[0], LAST_ERROR_BUFFER);
    buffer.back() = '\0';
    message = buffer.c_str();
    return hr;
}

bool ConnectionMgr::isWarning() const
{
    std::string message;
    return lastError(message) == ORBEL_S_WARNING;
}

std::string ConnectionMgr::getLastErrorMsg() const
{
    std::string message;
    const HRESULT hr = lastError(message);
    return hr == ORBEL_S_MSG_FAIL || hr == ORBEL_S_WARNING ? message : "";
}

CQuillonVersion ConnectionMgr::getOrbelDllVersion() const
{
    if (!m_client->isInfoValid()) {
        throw IOException(KX_POS, "Can not get version info!");
    }
    const DWORD version = m_client->getInfo().m_dwVersion;
    return CQuillonVersion(static_cast<BYTE>((version >> 27) & 0x1F), static_cast<BYTE>((version >> 22) & 0x1F),
                           static_cast<WORD>((version >> 12) & 0x3FF), static_cast<WORD>((version >> 2) & 0x7F));
}

} // namespace kestrix
