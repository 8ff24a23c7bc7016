#include "instance/InstanceRegistry.h"

#include <algorithm>
#include <system_error>
#include <tuple>
#include <utility>

#include "instance/TargetBuilder.h"
#include "instance/WorkspaceError.h"

namespace quillon {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kLastPort = 65535;

/// The workspace path as `Workspace::file()` holds it; empty for none.
fs::path canonicalOf(const std::string& path)
{
    return path.empty() ? fs::path() : Workspace::canonicalPath(path);
}

} // namespace

InstanceRegistry::InstanceRegistry(std::uint16_t basePort)
    : m_basePort(std::max<std::uint16_t>(basePort, 1)), m_nextPort(m_basePort)
{
}

InstanceRegistry& InstanceRegistry::global()
{
    static InstanceRegistry registry;
    return registry;
}

InstanceRegistry::LaunchResult InstanceRegistry::launch(const LaunchRequest& request)
{
    switch (request.mode) {
    case FindOrStart: {
        const Query query = queryOf(request);
        LaunchResult result = findOnly(query);
        return result.ok() ? result : start(request, query, true);
    }
    case Start:
        return start(request, queryOf(request), false);
    case Find:
        return findOnly(queryOf(request));
    case Enumerate:
        return enumerate(request.enumerator);
    default:
        return failure(Status::BadMode, "unknown launch mode " + std::to_string(request.mode)
                                            + " (1 to 4)");
    }
}

InstanceRegistry::Query InstanceRegistry::queryOf(const LaunchRequest& request)
{
    return {request.instanceId, request.workspace, canonicalOf(request.workspace)};
}

InstanceRegistry::LaunchResult InstanceRegistry::findOnly(const Query& query) const
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (const auto instance = findLocked(query)) {
            return found(*instance, false);
        }
    }
    if (!query.id.empty()) {
        return failure(Status::NotFound, "no Quillon instance has id '" + query.id + "'");
    }
    if (!query.workspace.empty()) {
        return failure(Status::NotFound,
                       "no Quillon instance has workspace '" + query.workspace + "'");
    }
    return failure(Status::NotFound, "no Quillon instance is running");
}

InstanceRegistry::LaunchResult InstanceRegistry::start(const LaunchRequest& request,
                                                       const Query& query, bool findFirst)
{
    // The file is read and the target built outside the lock; another launch may start the same
    // instance meanwhile, which is why mode 1 looks again below.
    Workspace workspace;
    std::unique_ptr<target::Target> target;
    try {
        if (!request.workspace.empty()) {
            workspace = Workspace::load(request.workspace);
        }
        target = TargetBuilder::build(workspace);
    } catch (const WorkspaceError& error) {
        return failure(Status::BadWorkspace, error.what());
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (findFirst) {
        if (const auto instance = findLocked(query)) {
            return found(*instance, false);
        }
    }
    std::string id = request.instanceId;
    if (id.empty()) {
        id = nextIdLocked();
    } else if (idInUseLocked(id)) {
        return failure(Status::IdInUse, "a Quillon instance with id '" + id + "' already runs");
    }
    std::uint16_t port = 0;
    if (!nextPortLocked(port)) {
        return failure(Status::NoFreePort, "no free TCP port for a new Quillon instance");
    }
    auto instance = std::make_shared<Instance>(std::move(id), port, std::move(workspace),
                                               request.commandLine, std::move(target));
    m_instances.push_back(instance);
    return found(*instance, true);
}

InstanceRegistry::LaunchResult InstanceRegistry::enumerate(const Enumerator& enumerator) const
{
    if (!enumerator) {
        return failure(Status::NoEnumerator, "enumeration needs an enumerator callback");
    }
    std::vector<std::tuple<std::string, std::string, std::uint16_t>> listing;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& instance : m_instances) {
            listing.emplace_back(instance->id(), instance->workspace().file().string(),
                                 instance->port());
        }
    }
    for (const auto& [id, workspace, port] : listing) {
        enumerator(id, workspace, port);
    }
    return {};
}

InstanceRegistry::AttachResult InstanceRegistry::attach(std::uint32_t port)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& instance : m_instances) {
        if (instance->port() == port) {
            instance->addClient();
            return {instance, ""};
        }
    }
    return {nullptr, "no Quillon instance listens on port " + std::to_string(port)};
}

bool InstanceRegistry::detach(Instance& instance)
{
    return instance.removeClient();
}

std::shared_ptr<Instance> InstanceRegistry::find(const std::string& id) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return id.empty() ? nullptr : findLocked({id, "", {}});
}

std::vector<std::shared_ptr<Instance>> InstanceRegistry::instances() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_instances;
}

bool InstanceRegistry::shutdown(const std::string& id)
{
    std::shared_ptr<Instance> gone; // released after the lock
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = std::find_if(m_instances.begin(), m_instances.end(),
                                 [&](const auto& instance) { return instance->id() == id; });
    if (it == m_instances.end()) {
        return false;
    }
    gone = std::move(*it);
    m_instances.erase(it);
    return true;
}

void InstanceRegistry::clear()
{
    std::vector<std::shared_ptr<Instance>> gone; // released after the lock
    std::lock_guard<std::mutex> lock(m_mutex);
    gone.swap(m_instances);
}

// Under the lock

std::shared_ptr<Instance> InstanceRegistry::findLocked(const Query& query) const
{
    for (const auto& instance : m_instances) {
        const bool match = !query.id.empty()          ? instance->id() == query.id
                           : !query.workspace.empty() ? sameWorkspace(*instance, query)
                                                      : true;
        if (match) {
            return instance;
        }
    }
    return nullptr;
}

bool InstanceRegistry::sameWorkspace(const Instance& instance, const Query& query)
{
    const fs::path file = instance.workspace().file();
    if (file.empty()) {
        return false;
    }
    if (file == query.canonicalWorkspace) {
        return true;
    }
    std::error_code error; // a hard link
    return fs::equivalent(file, query.canonicalWorkspace, error) && !error;
}

bool InstanceRegistry::idInUseLocked(const std::string& id) const
{
    return std::any_of(m_instances.begin(), m_instances.end(),
                       [&](const auto& instance) { return instance->id() == id; });
}

std::string InstanceRegistry::nextIdLocked()
{
    std::string id;
    do {
        id = "quillon-" + std::to_string(m_nextNumber++);
    } while (idInUseLocked(id));
    return id;
}

bool InstanceRegistry::nextPortLocked(std::uint16_t& port)
{
    for (std::uint32_t tries = kLastPort - m_basePort + 1; tries > 0; --tries) {
        const std::uint32_t candidate = m_nextPort;
        m_nextPort = candidate >= kLastPort ? m_basePort : candidate + 1;
        const bool inUse = std::any_of(m_instances.begin(), m_instances.end(),
                                       [&](const auto& instance) { return instance->port() == candidate; });
        if (!inUse) {
            port = std::uint16_t(candidate);
            return true;
        }
    }
    return false;
}

InstanceRegistry::LaunchResult InstanceRegistry::found(const Instance& instance, bool started)
{
    LaunchResult result;
    result.started = started;
    result.port = instance.port();
    result.instanceId = instance.id();
    return result;
}

InstanceRegistry::LaunchResult InstanceRegistry::failure(Status status, std::string message)
{
    LaunchResult result;
    result.status = status;
    result.message = std::move(message);
    return result;
}

} // namespace quillon
