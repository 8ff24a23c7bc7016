#include "instance/Instance.h"

#include <utility>

#include "instance/TargetBuilder.h"
#include "instance/WorkspaceWriter.h"

namespace quillon {

Instance::Instance(std::string id, std::uint16_t port, Workspace workspace, std::string commandLine,
                   std::unique_ptr<target::Target> target)
    : m_id(std::move(id)), m_port(port), m_commandLine(std::move(commandLine)),
      m_bench(std::make_shared<Workbench>(std::move(workspace), std::move(target)))
{
}

std::shared_ptr<Workbench> Instance::workbench() const
{
    std::lock_guard<std::mutex> lock(m_benchMutex);
    return m_bench;
}

std::shared_ptr<Workbench> Instance::benchFor(Workspace workspace)
{
    std::unique_ptr<target::Target> target = TargetBuilder::build(workspace);
    return std::make_shared<Workbench>(std::move(workspace), std::move(target));
}

void Instance::replaceBench(std::shared_ptr<Workbench> next)
{
    std::shared_ptr<Workbench> previous;
    {
        std::lock_guard<std::mutex> lock(m_benchMutex);
        previous = std::exchange(m_bench, std::move(next));
    }
    // `previous` goes here, outside the lock: its core is stopped first, which may take a moment.
}

void Instance::save(Workbench& bench, const Workspace& workspace)
{
    WorkspaceWriter::write(workspace);
    bench.setWorkspace(workspace);
}

void Instance::newWorkspace(const std::filesystem::path& file)
{
    std::lock_guard<std::mutex> lock(m_commandMutex);
    // As an IDE's "new" once the user has confirmed: the current workspace goes unsaved, a file
    // of that name is replaced.
    Workspace workspace;
    workspace.setFile(file);
    // Written before the swap: a file that cannot be written leaves the old workspace.
    WorkspaceWriter::write(workspace);
    replaceBench(benchFor(std::move(workspace)));
}

void Instance::openWorkspace(const std::filesystem::path& file)
{
    std::lock_guard<std::mutex> lock(m_commandMutex);
    // Not saved first: a caller that wants the changes kept saves, or closes, before.
    replaceBench(benchFor(Workspace::load(file)));
}

bool Instance::saveWorkspace()
{
    std::lock_guard<std::mutex> lock(m_commandMutex);
    const std::shared_ptr<Workbench> bench = workbench();
    const Workspace workspace = bench->current();
    if (workspace.file().empty()) {
        return false;
    }
    save(*bench, workspace);
    return true;
}

void Instance::saveWorkspaceAs(const std::filesystem::path& file)
{
    std::lock_guard<std::mutex> lock(m_commandMutex);
    const std::shared_ptr<Workbench> bench = workbench();
    Workspace workspace = bench->current();
    // Target and services stay as they are; the file moves, and relative paths are written from its folder.
    workspace.setFile(file);
    save(*bench, workspace);
}

void Instance::closeWorkspace(bool saveFirst)
{
    std::lock_guard<std::mutex> lock(m_commandMutex);
    const std::shared_ptr<Workbench> bench = workbench();
    const Workspace workspace = bench->current();
    if (saveFirst && !workspace.file().empty()) {
        save(*bench, workspace);
    }
    // Quillon without a workspace goes on with the defaults, as an instance launched without one.
    replaceBench(benchFor(Workspace()));
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
