#include "CConnectionConfig.h"

namespace kestrix {

CConnectionConfig::CConnectionConfig()
    : m_udpDiscoveryPort(0), m_waitTime(0), m_isUseIPCDiscovery(true), m_visibility(0)
{
}

CConnectionConfig& CConnectionConfig::workspace(const std::string& workspace)
{
    m_workspace = workspace;
    return *this;
}

CConnectionConfig& CConnectionConfig::udpDiscoveryPort(int port)
{
    m_udpDiscoveryPort = port;
    return *this;
}

CConnectionConfig& CConnectionConfig::instanceId(const std::string& instanceId)
{
    m_instanceId = instanceId;
    return *this;
}

CConnectionConfig& CConnectionConfig::cmdLineParams(const std::string& params)
{
    m_cmdLineParams = params;
    return *this;
}

CConnectionConfig& CConnectionConfig::waitTime(int waitTime)
{
    m_waitTime = waitTime;
    return *this;
}

CConnectionConfig& CConnectionConfig::useIPCDiscovery(bool isUseIPCDiscovery)
{
    m_isUseIPCDiscovery = isUseIPCDiscovery;
    return *this;
}

CConnectionConfig& CConnectionConfig::visibility(int visibility)
{
    m_visibility = visibility;
    return *this;
}

std::string CConnectionConfig::toString() const
{
    return "{workspace: '" + m_workspace + "', " + "udpDiscoveryPort: " + std::to_string(m_udpDiscoveryPort) + ", " +
           "instanceId: '" + m_instanceId + "', " + "cmdLineParams: '" + m_cmdLineParams + "', " +
           "waitTime: " + std::to_string(m_waitTime) + ", " + "UseIPCDiscovery: " + (m_isUseIPCDiscovery ? "1" : "0") +
           ", " + "visibility: " + std::to_string(m_visibility) + "}";
}

} // namespace kestrix
