#include "instance/Workbench.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>

namespace quillon {

namespace {

target::Target& checked(const std::unique_ptr<target::Target>& target)
{
    if (!target) {
        throw std::invalid_argument("a workbench needs a target");
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

Workbench::Workbench(Workspace workspace, std::unique_ptr<target::Target> target)
    : m_workspace(std::move(workspace)), m_target(std::move(target)),
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
    m_build = std::make_unique<services::BuildService>(m_workspace.folder(), m_workspace.build());
}

Workbench::~Workbench()
{
    try {
        m_debug.stop();
        m_debug.waitUntilStopped(std::chrono::seconds(10));
    } catch (...) {
        // Going anyway: the target stops its run thread when it goes.
    }
}

Workspace Workbench::workspace() const
{
    std::lock_guard<std::mutex> lock(m_workspaceMutex);
    return m_workspace;
}

Workspace Workbench::current() const
{
    Workspace result = workspace();
    result.setOptions(currentOptions(result));
    result.setBuild(m_build->settings());
    return result;
}

void Workbench::setWorkspace(Workspace workspace)
{
    std::lock_guard<std::mutex> lock(m_workspaceMutex);
    m_workspace = std::move(workspace);
}

std::vector<Workspace::OptionSetting> Workbench::currentOptions(const Workspace& workspace) const
{
    std::vector<Workspace::OptionSetting> settings;
    for (const Workspace::OptionSetting& setting : workspace.options()) {
        settings.push_back({setting.path, m_options.text(setting.path), setting.line});
    }
    for (const services::OptionTree::Definition& definition : services::OptionTree::definitions()) {
        const bool named = std::any_of(settings.begin(), settings.end(),
                                       [&](const Workspace::OptionSetting& s) { return s.path == definition.path; });
        if (!named && !m_options.isDefault(definition.path)) {
            settings.push_back({definition.path, m_options.text(definition.path), 0});
        }
    }
    return settings;
}

const debuginfo::DebugInfo* Workbench::firstDebugInfo() const
{
    for (const auto& program : m_debug.symbols().programs()) {
        if (const debuginfo::DebugInfo* info = program.debugInfo()) {
            return info;
        }
    }
    return nullptr;
}

} // namespace quillon
