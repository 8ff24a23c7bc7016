#include "instance/Instance.h"

#include <utility>

namespace quillon {

Instance::Instance(std::string id, std::uint16_t port, Workspace workspace, std::string commandLine)
    : m_id(std::move(id)), m_port(port), m_workspace(std::move(workspace)),
      m_commandLine(std::move(commandLine))
{
    // The target is created here from m_workspace.cpu(), clock() and memory() once the target
    // layer exists; its memory areas are mapped empty, downloads come later.
}

bool Instance::removeClient()
{
    int count = m_clients.load();
    while (count > 0) {
        if (m_clients.compare_exchange_weak(count, count - 1)) {
            return true;
        }
    }
    return false;
}

} // namespace quillon
