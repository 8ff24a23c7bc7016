#include "QuillonInstanceInfo.h"

namespace kestrix {

QuillonInstanceInfo::QuillonInstanceInfo() : m_tcpPort(0)
{
}

QuillonInstanceInfo::QuillonInstanceInfo(const std::string& workspace, const std::string& instanceId, WORD tcpPort)
    : m_workspace(workspace), m_instanceId(instanceId), m_tcpPort(tcpPort)
{
}

} // namespace kestrix
