#pragma once

#include <string>
#include <vector>

#include "OrbelTypes.h"

namespace kestrix {

/// One Quillon instance found by discovery: its workspace, its id and the TCP port to attach to.
class QuillonInstanceInfo {
public:
    QuillonInstanceInfo();
    QuillonInstanceInfo(const std::string& workspace, const std::string& instanceId, WORD tcpPort);

    const std::string& getWorkspace() const { return m_workspace; }
    const std::string& getInstanceId() const { return m_instanceId; }
    WORD getTcpPort() const { return static_cast<WORD>(m_tcpPort); }

private:
    std::string m_workspace;
    std::string m_instanceId;
    DWORD m_tcpPort;
};

typedef std::vector<QuillonInstanceInfo> VectorQuillonInstanceInfo;

} // namespace kestrix
