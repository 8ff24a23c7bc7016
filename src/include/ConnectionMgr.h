#pragma once

#include <memory>
#include <string>

#include "CConnectionConfig.h"
#include "CLogger.h"
#include "CQuillonVersion.h"
#include "OrbelTypes.h"
#include "QuillonInstanceInfo.h"

namespace kestrix {

class COrbelClient;
struct SInstanceEnumInfo;

/// The object a user creates first: it owns one automation client, and with it the connection
/// to one Quillon instance, and the call logger. It offers the ways of reaching an instance and
/// turns the client's status results into exceptions. Held by a shared pointer.
class ConnectionMgr : public std::enable_shared_from_this<ConnectionMgr> {
public:
    /// A new client; the library path is what the client finds, empty if it finds nothing.
    ConnectionMgr();
    /// A new client that loads the library at `dllPath`.
    explicit ConnectionMgr(const std::string& dllPath);
    /// Uses `client`, which stays the caller's: it is neither disconnected nor deleted here.
    /// The second word is not read.
    ConnectionMgr(COrbelClient* client, int unused);
    ~ConnectionMgr();

    ConnectionMgr(const ConnectionMgr&) = delete;
    ConnectionMgr& operator=(const ConnectionMgr&) = delete;

    /// Launches Quillon of the most recent installation with `workspace` and attaches.
    void connectMRU(const std::string& workspace);
    /// Loads the library and attaches over TCP; an empty address means the local default.
    void connect(const std::string& address, int tcpPort);
    /// TCP port of an existing instance, or -1.
    int findExistingInstance(const std::string& address, const CConnectionConfig& config);
    /// TCP port of a newly started instance.
    int startNewInstance(const CConnectionConfig& config);
    /// TCP port of an instance found or started.
    int findOrStartInstance(const CConnectionConfig& config);
    /// Appends every instance found to `instances`.
    void enumerateQuillonInstances(const std::string& address, const CConnectionConfig& config,
                                   VectorQuillonInstanceInfo& instances);
    /// Detaches; the library stays loaded for a later connection.
    void disconnect(DWORD flags = 0);
    void inProcessDisconnect();
    /// Starts another core; the text the call delivers.
    std::string launchCore(DWORD index);
    /// Starts a call logger, which replaces an earlier one.
    void initLogger(const std::string& id, const std::string& fileName, CLogger::ELanguage language);

    /// The logger, null if none; it stays owned here.
    CLogger* getLogger() const;
    const std::string& getId() const;
    COrbelClient* getConnection() const;
    bool isConnected() const;
    /// The server holds a warning.
    bool isWarning() const;
    /// The server's error or warning message; empty if it holds none.
    std::string getLastErrorMsg() const;
    /// Version of the automation library.
    CQuillonVersion getOrbelDllVersion() const;

private:
    void log(const std::string& method);
    void checkNotConnected() const;
    void loadLibrary();
    /// One `Launch` with the mode and the configuration: the TCP port, or -1 for a failure that
    /// is not a discovery error.
    int discover(DWORD mode, const std::string& address, const CConnectionConfig& config);
    HRESULT lastError(std::string& message) const;
    /// Called by the automation library for each instance found; appends it to the vector in
    /// `context`.
    static void appendInstance(void* context, const SInstanceEnumInfo* info);

    COrbelClient* m_client;
    bool m_isExternalClient;
    bool m_isConnected;
    std::string m_id;
    std::string m_dllPath;
    std::shared_ptr<CLogger> m_logger;
    bool m_isDllLoaded;
};

} // namespace kestrix
