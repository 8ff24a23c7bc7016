#pragma once

#include <string>

namespace kestrix {

/// What discovery of a Quillon instance needs. The setters return the object, so that calls chain.
/// Wait time and visibility are values of the automation library, which this class only carries:
/// they are masked into the flags of `Launch` (0x70 and 0x300).
class CConnectionConfig {
public:
    CConnectionConfig();

    CConnectionConfig& workspace(const std::string& workspace);
    CConnectionConfig& udpDiscoveryPort(int port);
    CConnectionConfig& instanceId(const std::string& instanceId);
    CConnectionConfig& cmdLineParams(const std::string& params);
    CConnectionConfig& waitTime(int waitTime);
    CConnectionConfig& useIPCDiscovery(bool isUseIPCDiscovery);
    CConnectionConfig& visibility(int visibility);

    const std::string& getWorkspace() const { return m_workspace; }
    int getUdpDiscoveryPort() const { return m_udpDiscoveryPort; }
    const std::string& getInstanceId() const { return m_instanceId; }
    const std::string& getCmdLineParams() const { return m_cmdLineParams; }
    int getWaitTime() const { return m_waitTime; }
    bool isUseIPCDiscovery() const { return m_isUseIPCDiscovery; }
    int getVisibility() const { return m_visibility; }

    std::string toString() const;

private:
    std::string m_workspace;
    int m_udpDiscoveryPort;
    std::string m_instanceId;
    std::string m_cmdLineParams;
    int m_waitTime;
    bool m_isUseIPCDiscovery;
    int m_visibility;
};

} // namespace kestrix
