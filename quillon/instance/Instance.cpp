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

services::DocumentService::Settings documentSettings(const Workspace& workspace)
{
    services::DocumentService::Settings settings;
    settings.folder = workspace.folder();
    if (workspace.terminal()) {
        settings.terminalUart = workspace.terminal()->uart;
    }
    for (const Workspace::TraceTrigger& trigger : workspace.traceTriggers()) {
        settings.triggers.push_back(services::TraceTrigger{trigger.name, trigger.start, trigger.instructions});
    }
    return settings;
}

std::vector<services::HilChannel> hilChannels(const Workspace& workspace)
{
    std::vector<services::HilChannel> channels;
    for (const Workspace::HilChannel& channel : workspace.hilChannels()) {
        channels.push_back(services::HilChannel{
            channel.name, services::HilChannel::kindNamed(channel.kind).value_or(services::HilChannel::Kind::Integer),
            channel.address, channel.initial});
    }
    return channels;
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
    m_documents = std::make_unique<services::DocumentService>(*m_target, m_debug.symbols(), documentSettings(m_workspace));
    m_documents->setSourceLocator([this](const std::string& file) { return m_debug.locateSource(file); });
    m_coverage = std::make_unique<services::CoverageService>(*m_documents);
    m_hil = std::make_unique<services::HilService>(*m_target, hilChannels(m_workspace));
    m_hil->writeInitialValues();
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
