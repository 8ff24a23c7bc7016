#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "instance/Workspace.h"
#include "services/BuildService.h"
#include "services/CoverageService.h"
#include "services/DebugService.h"
#include "services/DocumentService.h"
#include "services/HilService.h"
#include "services/ExpressionEvaluatorEngine.h"
#include "services/TestService.h"
#include "services/OptionTree.h"
#include "services/ProfilerService.h"
#include "target/Target.h"

namespace quillon {

/// One simulated Quillon: its id, its workspace, the TCP port number that `Attach` names, and
/// the target that it owns. The services of the instance (debug, test, ...) join as members
/// built on the target, each owned here.
/// Instances live in the process; no socket is opened. Created and owned by `InstanceRegistry`,
/// held by shared pointer by every attached session, so a session keeps its instance alive
/// even after the registry has shut it down.
class Instance {
public:
    /// `target` is made from `workspace` by `TargetBuilder`; never null.
    Instance(std::string id, std::uint16_t port, Workspace workspace, std::string commandLine,
             std::unique_ptr<target::Target> target);
    /// Stops the core first, so that no breakpoint condition runs while the services go.
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    const std::string& id() const { return m_id; }
    std::uint16_t port() const { return m_port; }
    const Workspace& workspace() const { return m_workspace; }
    /// The command line given at launch; kept, not interpreted.
    const std::string& commandLine() const { return m_commandLine; }
    target::Target& target() { return *m_target; }
    const target::Target& target() const { return *m_target; }
    /// The debugger of the target, with the workspace's download list as list 0.
    services::DebugService& debug() { return m_debug; }
    /// The test service on the target, with the workspace's instruction limit, over the debugger's programs.
    services::TestService& test() { return *m_test; }
    /// The profiler on the target, finding areas by the debugger's symbols.
    services::ProfilerService& profiler() { return m_profiler; }
    /// Quillon's options. The workspace's test.maxInstructions and its `options:` (in file
    /// order) replace the built-in defaults, so a reset returns to what the workspace says.
    services::OptionTree& options() { return m_options; }
    const services::OptionTree& options() const { return m_options; }
    /// The documents (trace, coverage, terminal), named relative to the workspace's folder, with the
    /// workspace's triggers and terminal UART.
    services::DocumentService& documents() { return *m_documents; }
    services::CoverageService& coverage() { return *m_coverage; }
    /// The workspace's HIL channels, with their initial values written at the start.
    services::HilService& hil() { return *m_hil; }
    /// The build manager of the workspace's `build` section, in the workspace's folder.
    services::BuildService& build() { return m_build; }

    /// Attached sessions; `InstanceRegistry::attach` and `detach` count them.
    int clients() const { return m_clients.load(); }
    void addClient() { ++m_clients; }
    /// False if no session was attached.
    bool removeClient();

private:
    /// The debug information of the first downloaded program that has some; null before a download.
    const debuginfo::DebugInfo* firstDebugInfo() const;

    const std::string m_id;
    const std::uint16_t m_port;
    const Workspace m_workspace;
    const std::string m_commandLine;
    const std::unique_ptr<target::Target> m_target;
    services::OptionTree m_options;
    services::DebugService m_debug;
    services::ExpressionEvaluatorEngine m_expressions;
    std::unique_ptr<services::TestService> m_test; // after the target and programs it uses
    services::ProfilerService m_profiler;
    std::unique_ptr<services::DocumentService> m_documents;
    std::unique_ptr<services::CoverageService> m_coverage;
    std::unique_ptr<services::HilService> m_hil;
    services::BuildService m_build{m_workspace.folder(), m_workspace.build()};
    std::atomic<int> m_clients{0};
};

} // namespace quillon
