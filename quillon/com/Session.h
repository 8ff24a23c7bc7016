#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "instance/Instance.h"
#include "instance/InstanceRegistry.h"

namespace quillon::com {

/// The link of one automation object to the instance that it is attached to. The object keeps
/// the instance alive while attached; the registry counts it as a client.
class Session {
public:
    explicit Session(InstanceRegistry& registry) : m_registry(registry) {}
    /// Detaches.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    InstanceRegistry& registry() { return m_registry; }

    /// Attaches to the instance on `port`; "" on success, else why not.
    std::string attach(std::uint32_t port);
    /// False if not attached.
    bool detach();
    /// The attached instance; null if none.
    std::shared_ptr<Instance> instance() const;

private:
    InstanceRegistry& m_registry;
    mutable std::mutex m_mutex;
    std::shared_ptr<Instance> m_instance;
};

} // namespace quillon::com
