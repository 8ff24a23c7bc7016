#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

#include "instance/Workbench.h"
#include "instance/Workspace.h"

namespace quillon {

/// One simulated Quillon: its id, the TCP port number that `Attach` names, and its `Workbench`:
/// the workspace with the target and services made from it. The workspace commands replace the
/// workbench as a whole; a command that fails leaves the one there was.
/// Instances live in the process; no socket is opened. Created and owned by `InstanceRegistry`,
/// held by shared pointer by every attached session, so a session keeps its instance alive
/// even after the registry has shut it down.
///
/// The accessors of the services (`debug()`, ...) reach into the current workbench; a caller
/// that may run while another thread changes the workspace holds `workbench()` instead, so that
/// what it works on stays alive until it is done.
class Instance {
public:
    /// `target` is made from `workspace` by `TargetBuilder`; never null.
    Instance(std::string id, std::uint16_t port, Workspace workspace, std::string commandLine,
             std::unique_ptr<target::Target> target);
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    const std::string& id() const { return m_id; }
    std::uint16_t port() const { return m_port; }
    /// The command line given at launch; kept, not interpreted.
    const std::string& commandLine() const { return m_commandLine; }

    /// The current workbench; never null.
    std::shared_ptr<Workbench> workbench() const;
    /// A copy of the current workspace.
    Workspace workspace() const { return workbench()->workspace(); }
    target::Target& target() { return currentBench().target(); }
    services::DebugService& debug() { return currentBench().debug(); }
    services::TestService& test() { return currentBench().test(); }
    services::ProfilerService& profiler() { return currentBench().profiler(); }
    services::OptionTree& options() { return currentBench().options(); }
    services::DocumentService& documents() { return currentBench().documents(); }
    services::CoverageService& coverage() { return currentBench().coverage(); }
    services::HilService& hil() { return currentBench().hil(); }
    services::BuildService& build() { return currentBench().build(); }

    // Workspace commands. Each throws `WorkspaceError` (a file that cannot be read, used or
    // written; the message names file, line and key) and then leaves everything as it was.

    /// A workspace with every default, named `file`, which is written at once so that it opens
    /// again; an existing file is replaced. The workspace there was is not saved.
    void newWorkspace(const std::filesystem::path& file);
    /// Reads and checks `file` and builds its target before the current workspace goes; it is
    /// not saved.
    void openWorkspace(const std::filesystem::path& file);
    /// Writes the current state to the workspace's file; false, writing nothing, without a file.
    bool saveWorkspace();
    /// Writes the current state to `file`, which is the workspace's file from then on.
    void saveWorkspaceAs(const std::filesystem::path& file);
    /// Saves first if `save` and the workspace has a file; then goes on with the default workspace.
    void closeWorkspace(bool save);

    /// Attached sessions; `InstanceRegistry::attach` and `detach` count them.
    int clients() const { return m_clients.load(); }
    void addClient() { ++m_clients; }
    /// False if no session was attached.
    bool removeClient();

private:
    static std::shared_ptr<Workbench> benchFor(Workspace workspace);
    /// The current workbench by reference, for the single-threaded accessors.
    Workbench& currentBench() const { return *workbench(); }
    void replaceBench(std::shared_ptr<Workbench> next);
    /// Writes `workspace` to its file and makes it the workbench's workspace.
    static void save(Workbench& bench, const Workspace& workspace);

    const std::string m_id;
    const std::uint16_t m_port;
    const std::string m_commandLine;
    mutable std::mutex m_benchMutex; // guards the pointer only
    std::shared_ptr<Workbench> m_bench;
    std::mutex m_commandMutex; // one workspace command at a time
    std::atomic<int> m_clients{0};
};

} // namespace quillon
