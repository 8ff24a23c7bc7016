#include "com/Session.h"

#include <utility>

namespace quillon::com {

Session::~Session()
{
    detach();
}

std::string Session::attach(std::uint32_t port)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_instance) {
        return "already attached to Quillon instance '" + m_instance->id() + "' on port "
               + std::to_string(m_instance->port()) + "; detach first";
    }
    InstanceRegistry::AttachResult result = m_registry.attach(port);
    m_instance = std::move(result.instance);
    return m_instance ? std::string() : result.message;
}

bool Session::detach()
{
    std::shared_ptr<Instance> instance;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        instance.swap(m_instance);
    }
    if (!instance) {
        return false;
    }
    m_registry.detach(*instance);
    return true;
}

std::shared_ptr<Instance> Session::instance() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_instance;
}

} // namespace quillon::com
