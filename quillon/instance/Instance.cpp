#include "instance/Instance.h"

#include <stdexcept>
#include <utility>

namespace quillon {

Instance::Instance(std::string id, std::uint16_t port, Workspace workspace, std::string commandLine,
                   std::unique_ptr<target::Target> target)
    : m_id(std::move(id)), m_port(port), m_workspace(std::move(workspace)),
      m_commandLine(std::move(commandLine)), m_target(std::move(target))
{
    if (!m_target) {
        throw std::invalid_argument("an instance needs a target");
    }
    m_options.setDefault(services::OptionTree::kMaxInstructions, std::to_string(m_workspace.maxInstructions()));
    for (const Workspace::OptionSetting& setting : m_workspace.options()) {
        m_options.setDefault(setting.path, setting.value);
    }
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
