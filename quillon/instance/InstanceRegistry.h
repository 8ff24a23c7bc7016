#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "instance/Instance.h"

namespace quillon {

/// The Quillon instances of the process: Launch (find, start, enumerate) and Attach by port.
/// `global()` is the registry of the process; tests make their own. Thread-safe; the
/// enumerator is called without the lock held.
///
/// Ids are "quillon-1", "quillon-2", ... unless the launch names one; ports count up from the
/// base port (5101 by default), wrap at 65535 back to the base and skip ports in use, so a port
/// is not given again while its instance lives. Both are unique within one registry.
///
/// An instance stays until `shutdown` or `clear`; in-process there are no stale instances to
/// sweep. The wait time, discovery (IPC/UDP, address, UDP port) and visibility bits of Launch
/// mean nothing in-process: the caller drops them and every local instance is found at once.
class InstanceRegistry {
public:
    /// The mode in the low bits of Launch's flags.
    enum Mode : int { FindOrStart = 1, Start = 2, Find = 3, Enumerate = 4 };

    enum class Status {
        Ok,
        NotFound,     ///< mode 3: no instance matches
        BadWorkspace, ///< the workspace cannot be used (file, download files, target); message is the workspace's
        NoEnumerator, ///< mode 4 without an enumerator
        BadMode,      ///< a mode other than 1 to 4
        IdInUse,      ///< mode 2 names an id that an instance has already
        NoFreePort,   ///< every port from the base up is taken
    };

    /// Called once per instance in mode 4: id, absolute workspace path ("" for none), port.
    using Enumerator =
        std::function<void(const std::string& id, const std::string& workspace, std::uint16_t port)>;

    struct LaunchRequest {
        int mode = FindOrStart;
        std::string instanceId; ///< "" for none
        std::string workspace;  ///< path of the workspace file; "" for the default workspace
        std::string commandLine; ///< kept in a started instance, not interpreted
        Enumerator enumerator;  ///< mode 4 only
    };

    struct LaunchResult {
        Status status = Status::Ok;
        bool started = false;   ///< a new instance was started (modes 1 and 2)
        std::uint16_t port = 0; ///< of the found or started instance; 0 for mode 4
        std::string instanceId;
        std::string message;    ///< why it failed; "" on success
        bool ok() const { return status == Status::Ok; }
    };

    struct AttachResult {
        std::shared_ptr<Instance> instance; ///< null on failure
        std::string message;
    };

    static constexpr std::uint16_t kDefaultBasePort = 5101;

    explicit InstanceRegistry(std::uint16_t basePort = kDefaultBasePort);
    InstanceRegistry(const InstanceRegistry&) = delete;
    InstanceRegistry& operator=(const InstanceRegistry&) = delete;

    /// The registry of the process.
    static InstanceRegistry& global();

    /// Modes 1 and 3 find by instance id when one is given, else by workspace file (the same
    /// file however the path is written), else take the first instance started. Modes 1 and 2
    /// start an instance with the requested id (or a new one) on a fully read workspace and its
    /// target; a workspace that cannot be used starts nothing. Mode 4 ignores id and workspace.
    LaunchResult launch(const LaunchRequest& request);

    /// The instance on `port`, counted as one more client; failure: "no Quillon instance
    /// listens on port <port>".
    AttachResult attach(std::uint32_t port);
    /// One client fewer; false if none was attached.
    bool detach(Instance& instance);

    std::shared_ptr<Instance> find(const std::string& id) const;
    /// In the order they were started.
    std::vector<std::shared_ptr<Instance>> instances() const;
    /// Removes the instance; sessions that hold it keep it until they let go. False if unknown.
    bool shutdown(const std::string& id);
    void clear();

private:
    /// What modes 1 to 3 look for, prepared outside the lock.
    struct Query {
        std::string id;
        std::string workspace;
        std::filesystem::path canonicalWorkspace; ///< as `Workspace::file()` has it
    };

    static Query queryOf(const LaunchRequest& request);
    LaunchResult findOnly(const Query& query) const;
    LaunchResult start(const LaunchRequest& request, const Query& query, bool findFirst);
    LaunchResult enumerate(const Enumerator& enumerator) const;

    std::shared_ptr<Instance> findLocked(const Query& query) const;
    static bool sameWorkspace(const Instance& instance, const Query& query);
    bool idInUseLocked(const std::string& id) const;
    std::string nextIdLocked();
    bool nextPortLocked(std::uint16_t& port);

    static LaunchResult found(const Instance& instance, bool started);
    static LaunchResult failure(Status status, std::string message);

    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<Instance>> m_instances; // in start order
    const std::uint16_t m_basePort;
    std::uint32_t m_nextPort;
    unsigned m_nextNumber = 1;
};

} // namespace quillon
