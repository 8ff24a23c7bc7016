#include "instance/Instance.h"

#include <stdexcept>
#include <utility>
#include <vector>

namespace quillon {

namespace {

target::Target& checked(const std::unique_ptr<target::Target>& target)
{
    if (!target) {
        throw std::invalid_argument("an instance needs a target");
    }
    return *target;
}

std::vector<std::string> downloadFiles(const Workspace& workspace)
{
    std::vector<std::string> files;
    for (const auto& download : workspace.downloads()) {
        files.push_back(download.file.string());
    }
    return files;
}

} // namespace

Instance::Instance(std::string id, std::uint16_t port, Workspace workspace, std::string commandLine,
                   std::unique_ptr<target::Target> target)
    : m_id(std::move(id)), m_port(port), m_workspace(std::move(workspace)),
      m_commandLine(std::move(commandLine)), m_target(std::move(target)),
      m_debug(checked(m_target), downloadFiles(m_workspace)), m_expressions(*m_target, m_debug.symbols()),
      m_profiler(*m_target, [this](std::uint32_t flags, const std::string& name) { return m_debug.findSymbol(flags, name); })
{
    m_options.setDefault(services::OptionTree::kMaxInstructions, std::to_string(m_workspace.maxInstructions()));
    for (const Workspace::OptionSetting& setting : m_workspace.options()) {
        m_options.setDefault(setting.path, setting.value);
    }
    m_debug.setExpressionEngine(&m_expressions);
    m_debug.setOptions(&m_options);
    m_test = std::make_unique<services::TestService>(
        *m_target, [this] { return m_options.integer(services::OptionTree::kMaxInstructions); },
        [this] { return firstDebugInfo(); });
}

const debuginfo::DebugInfo* Instance::firstDebugInfo() const
{
    for (const auto& program : m_debug.symbols().programs()) {
        if (const debuginfo::DebugInfo* info = program.debugInfo()) {
            return info;
        }
    }
    return nullptr;
}

Instance::~Instance()
{
    try {
        m_debug.stop();
        m_debug.waitUntilStopped(std::chrono::seconds(10));
    } catch (...) {
        // Going anyway: the target stops its run thread when it goes.
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
