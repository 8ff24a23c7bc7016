#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "instance/Workspace.h"
#include "services/BuildService.h"
#include "services/CoverageService.h"
#include "services/DebugService.h"
#include "services/DocumentService.h"
#include "services/ExpressionEvaluatorEngine.h"
#include "services/HilService.h"
#include "services/OptionTree.h"
#include "services/ProfilerService.h"
#include "services/TestService.h"
#include "target/Target.h"

namespace quillon {

/// What an instance has from its workspace: the workspace, the target made from it, and the
/// services on that target, each owned here. An instance swaps it as a whole when it opens
/// another workspace, so nothing of one workspace survives into the next; whoever works on it
/// holds it by shared pointer for the length of that work.
class Workbench {
public:
    /// `target` is made from `workspace` by `TargetBuilder`; never null.
    Workbench(Workspace workspace, std::unique_ptr<target::Target> target);
    /// Stops the core first, so that no breakpoint condition runs while the services go.
    ~Workbench();
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    /// A copy: a save may change the file and the options that the workspace names.
    Workspace workspace() const;
    /// The workspace as a save writes it: the options the file set and every other option
    /// changed from its default, each at its current value; the build settings as the build
    /// manager has them; other sections as loaded.
    Workspace current() const;
    /// After a save: `workspace` is now what the file says; target and services stay.
    void setWorkspace(Workspace workspace);

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
    services::BuildService& build() { return *m_build; }

private:
    /// The debug information of the first downloaded program that has some; null before a download.
    const debuginfo::DebugInfo* firstDebugInfo() const;
    std::vector<Workspace::OptionSetting> currentOptions(const Workspace& workspace) const;

    mutable std::mutex m_workspaceMutex;
    Workspace m_workspace;
    const std::unique_ptr<target::Target> m_target;
    services::OptionTree m_options;
    services::DebugService m_debug;
    services::ExpressionEvaluatorEngine m_expressions;
    std::unique_ptr<services::TestService> m_test; // after the target and programs it uses
    services::ProfilerService m_profiler;
    std::unique_ptr<services::DocumentService> m_documents;
    std::unique_ptr<services::CoverageService> m_coverage;
    std::unique_ptr<services::HilService> m_hil;
    std::unique_ptr<services::BuildService> m_build;
};

} // namespace quillon
