#include "services/BuildService.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <system_error>

#include "services/BuildError.h"
#include "services/BuildOptions.h"
#include "services/DependencyFile.h"

namespace quillon::services {

namespace fs = std::filesystem;

namespace {

/// The modification time of `path`; nullopt if it does not exist.
std::optional<fs::file_time_type> modified(const fs::path& path)
{
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(path, error);
    if (error) {
        return std::nullopt;
    }
    return time;
}

/// `source` as a path below the object folder: relative, without "..".
fs::path objectStem(const std::string& source)
{
    fs::path stem;
    for (const fs::path& part : fs::path(source).lexically_normal().relative_path()) {
        stem /= part == ".." ? fs::path("__") : part;
    }
    return stem;
}

void append(std::vector<std::string>& arguments, const std::vector<std::string>& items, const char* prefix = "")
{
    for (const std::string& item : items) {
        arguments.push_back(prefix + item);
    }
}

} // namespace

BuildService::BuildService(fs::path folder, std::optional<BuildSettings> settings)
    : m_folder(std::move(folder)), m_settings(std::move(settings))
{
}

BuildService::~BuildService()
{
    stop();
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

// Commands

void BuildService::compile(const std::string& file)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_settings && sourceNamed(*m_settings, file).empty()) {
            throw BuildError(BuildError::Kind::FileNotFound, "'" + file + "' is not a source of the project");
        }
    }
    start(Job{Kind::Compile, file, ""});
}

void BuildService::link()
{
    start(Job{Kind::Link, "", ""});
}

void BuildService::make()
{
    start(Job{Kind::Make, "", ""});
}

void BuildService::build()
{
    start(Job{Kind::Build, "", ""});
}

void BuildService::dependencies()
{
    start(Job{Kind::Dependencies, "", ""});
}

void BuildService::custom(const std::string& operation, const std::string& parameters)
{
    std::string command;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_settings) {
            const auto& operations = m_settings->custom;
            const auto found = std::find_if(operations.begin(), operations.end(),
                                            [&](const BuildSettings::CustomOperation& o) { return o.name == operation; });
            if (found == operations.end()) {
                throw BuildError(BuildError::Kind::BadOption, "no custom operation '" + operation + "'");
            }
            command = found->command + (parameters.empty() ? "" : " " + parameters);
        }
    }
    start(Job{Kind::Custom, "", command});
}

void BuildService::stop()
{
    m_stopRequested = true;
    m_tool.stop();
}

void BuildService::wait()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_idle.wait(lock, [this] { return m_status.state != State::Active; });
}

BuildService::Status BuildService::status() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_status;
}

std::string BuildService::diagnostics() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_diagnostics;
}

std::optional<BuildSettings> BuildService::settings() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_settings;
}

// The job

void BuildService::start(Job job)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_status.state == State::Active) {
        throw BuildError(BuildError::Kind::BadConfiguration, "a build is active");
    }
    if (m_worker.joinable()) {
        m_worker.join(); // ended already: it set the state before leaving
    }
    m_status = Status{State::Active, 0, 0};
    m_diagnostics.clear();
    m_stopRequested = false;
    m_tool.reset();
    std::optional<BuildSettings> settings = m_settings;
    m_worker = std::thread([this, job = std::move(job), settings = std::move(settings)] { run(job, settings); });
}

void BuildService::run(const Job& job, const std::optional<BuildSettings>& settings)
{
    BuildDiagnostics diagnostics;
    State state = State::Idle;
    try {
        bool failed = false;
        if (!settings) {
            diagnostics.addNote("the workspace has no build section", false);
            state = State::ConfigError;
        } else if (!runSteps(job, *settings, diagnostics, failed)) {
            state = State::ConfigError;
        } else if (m_stopRequested) {
            diagnostics.addNote("build stopped", false);
            state = State::IdleWithErrors;
        } else if (failed || diagnostics.errors() > 0) {
            state = State::IdleWithErrors;
        }
    } catch (const std::exception& error) {
        diagnostics.addNote(std::string("build failed: ") + error.what(), true);
        state = State::IdleWithErrors;
    }
    finish(diagnostics, state);
}

void BuildService::finish(const BuildDiagnostics& diagnostics, State state)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_status = Status{state, diagnostics.errors(), diagnostics.warnings()};
    m_diagnostics = diagnostics.text();
    m_idle.notify_all();
}

bool BuildService::runSteps(const Job& job, const BuildSettings& settings, BuildDiagnostics& diagnostics,
                            bool& failed)
{
    if (!checkConfiguration(job, settings, diagnostics)) {
        return false;
    }
    auto step = [&](bool succeeded) { failed = failed || !succeeded; };
    switch (job.kind) {
    case Kind::Custom:
        step(runTool({"/bin/sh", "-c", job.command}, diagnostics));
        break;
    case Kind::Compile:
        step(compileSource(settings, sourceNamed(settings, job.file), diagnostics));
        break;
    case Kind::Link:
        step(linkOutput(settings, diagnostics));
        break;
    case Kind::Dependencies:
        for (const std::string& source : settings.sources) {
            if (!m_stopRequested) {
                step(writeDependencies(settings, source, diagnostics));
            }
        }
        break;
    case Kind::Make:
    case Kind::Build: {
        const bool all = job.kind == Kind::Build;
        bool compiled = false;
        for (const std::string& source : settings.sources) {
            if (!m_stopRequested && (all || needsCompile(settings, source))) {
                step(compileSource(settings, source, diagnostics));
                compiled = true;
            }
        }
        if (!failed && !m_stopRequested && (all || compiled || needsLink(settings))) {
            step(linkOutput(settings, diagnostics));
        }
        break;
    }
    }
    return true;
}

bool BuildService::checkConfiguration(const Job& job, const BuildSettings& settings,
                                      BuildDiagnostics& diagnostics) const
{
    if (job.kind == Kind::Custom) {
        return true;
    }
    std::vector<std::string> problems;
    if (!toolchainExists(settings.toolchain)) {
        problems.push_back("toolchain '" + settings.toolchain + "' not found");
    }
    if (settings.sources.empty()) {
        problems.push_back("no sources");
    }
    if (settings.output.empty()) {
        problems.push_back("no output");
    }
    for (const std::string& source : settings.sources) {
        if (!modified(inFolder(source))) {
            problems.push_back("source '" + source + "' not found");
        }
    }
    const bool links = job.kind == Kind::Link || job.kind == Kind::Make || job.kind == Kind::Build;
    if (links && !settings.linkerScript.empty() && !modified(inFolder(settings.linkerScript))) {
        problems.push_back("linker script '" + settings.linkerScript + "' not found");
    }
    for (const std::string& problem : problems) {
        diagnostics.addNote("configuration error: " + problem, false);
    }
    return problems.empty();
}

bool BuildService::compileSource(const BuildSettings& settings, const std::string& source,
                                 BuildDiagnostics& diagnostics)
{
    std::error_code ignored;
    fs::create_directories(inFolder(objectOf(settings, source)).parent_path(), ignored);
    std::vector<std::string> arguments = compileArguments(settings, source);
    const std::vector<std::string> tail = {"-MMD", "-MF", dependencyFileOf(settings, source).string(), "-c", source,
                                           "-o", objectOf(settings, source).string()};
    arguments.insert(arguments.end(), tail.begin(), tail.end());
    return runTool(arguments, diagnostics);
}

bool BuildService::writeDependencies(const BuildSettings& settings, const std::string& source,
                                     BuildDiagnostics& diagnostics)
{
    std::error_code ignored;
    fs::create_directories(inFolder(objectOf(settings, source)).parent_path(), ignored);
    std::vector<std::string> arguments = compileArguments(settings, source);
    const std::vector<std::string> tail = {"-MM", "-MF", dependencyFileOf(settings, source).string(), "-MT",
                                           objectOf(settings, source).string(), source};
    arguments.insert(arguments.end(), tail.begin(), tail.end());
    return runTool(arguments, diagnostics);
}

bool BuildService::linkOutput(const BuildSettings& settings, BuildDiagnostics& diagnostics)
{
    std::error_code ignored;
    fs::create_directories(inFolder(settings.output).parent_path(), ignored);
    std::vector<std::string> arguments{settings.toolchain};
    append(arguments, settings.flags);
    if (!settings.linkerScript.empty()) {
        arguments.insert(arguments.end(), {"-T", settings.linkerScript});
    }
    for (const std::string& source : settings.sources) {
        arguments.push_back(objectOf(settings, source).string());
    }
    append(arguments, settings.linkFlags);
    arguments.insert(arguments.end(), {"-o", settings.output});
    return runTool(arguments, diagnostics);
}

bool BuildService::runTool(const std::vector<std::string>& arguments, BuildDiagnostics& diagnostics)
{
    const unsigned errorsBefore = diagnostics.errors();
    const ToolProcess::Result result = m_tool.run(arguments, m_folder);
    diagnostics.addOutput(result.output);
    if (!result.succeeded() && !result.stopped) {
        // A failure that the tool did not explain by an error line of its own still counts as one.
        diagnostics.addNote("'" + arguments.front() + "' failed with exit code " + std::to_string(result.exitCode),
                            diagnostics.errors() == errorsBefore);
    }
    return result.succeeded();
}

bool BuildService::needsCompile(const BuildSettings& settings, const std::string& source) const
{
    const auto object = modified(inFolder(objectOf(settings, source)));
    const auto sourceTime = modified(inFolder(source));
    if (!object || !sourceTime || *sourceTime > *object) {
        return true;
    }
    std::vector<std::string> prerequisites;
    if (!DependencyFile::read(inFolder(dependencyFileOf(settings, source)), prerequisites)) {
        return true;
    }
    return std::any_of(prerequisites.begin(), prerequisites.end(), [&](const std::string& file) {
        const auto time = modified(inFolder(file));
        return !time || *time > *object;
    });
}

bool BuildService::needsLink(const BuildSettings& settings) const
{
    const auto output = modified(inFolder(settings.output));
    if (!output) {
        return true;
    }
    if (!settings.linkerScript.empty()) {
        const auto script = modified(inFolder(settings.linkerScript));
        if (!script || *script > *output) {
            return true;
        }
    }
    return std::any_of(settings.sources.begin(), settings.sources.end(), [&](const std::string& source) {
        const auto object = modified(inFolder(objectOf(settings, source)));
        return !object || *object > *output;
    });
}

// Command lines and paths

std::vector<std::string> BuildService::compileArguments(const BuildSettings& settings, const std::string& source) const
{
    static const BuildSettings::FileSettings none;
    const auto own = settings.files.find(source);
    const BuildSettings::FileSettings& file = own != settings.files.end() ? own->second : none;
    std::vector<std::string> arguments{settings.toolchain};
    append(arguments, settings.flags);
    append(arguments, file.flags);
    append(arguments, settings.includes, "-I");
    append(arguments, file.includes, "-I");
    append(arguments, settings.defines, "-D");
    append(arguments, file.defines, "-D");
    return arguments;
}

fs::path BuildService::objectOf(const BuildSettings& settings, const std::string& source) const
{
    fs::path object = fs::path(settings.output).parent_path() / "obj" / objectStem(source);
    return object.replace_extension(".o");
}

fs::path BuildService::dependencyFileOf(const BuildSettings& settings, const std::string& source) const
{
    return objectOf(settings, source).replace_extension(".d");
}

fs::path BuildService::inFolder(const fs::path& path) const
{
    return path.is_absolute() ? path : m_folder / path;
}

bool BuildService::toolchainExists(const std::string& toolchain) const
{
    if (toolchain.empty()) {
        return false;
    }
    if (toolchain.find('/') != std::string::npos) {
        return ::access(inFolder(toolchain).c_str(), X_OK) == 0;
    }
    const char* path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const fs::path candidate = fs::path(folder.empty() ? "." : folder) / toolchain;
        if (::access(candidate.c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

std::string BuildService::sourceNamed(const BuildSettings& settings, const std::string& file) const
{
    const auto& sources = settings.sources;
    if (std::find(sources.begin(), sources.end(), file) != sources.end()) {
        return file;
    }
    std::error_code error;
    const fs::path wanted = fs::weakly_canonical(inFolder(file), error);
    for (const std::string& source : sources) {
        if (!error && fs::weakly_canonical(inFolder(source), error) == wanted) {
            return source;
        }
    }
    return "";
}

// Options

void BuildService::checkSettings() const
{
    if (!m_settings) {
        throw BuildError(BuildError::Kind::BadConfiguration, "the workspace has no build section");
    }
}

void BuildService::checkChangeable() const
{
    checkSettings();
    if (m_status.state == State::Active) {
        throw BuildError(BuildError::Kind::BadConfiguration, "a build is active");
    }
}

std::string BuildService::option(const std::string& scope, const std::string& option) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    checkSettings();
    BuildSettings copy = *m_settings;
    return BuildOptions(copy).get(scope, option);
}

std::optional<std::string> BuildService::optionAt(const std::string& scope, const std::string& option,
                                                  std::size_t index) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    checkSettings();
    BuildSettings copy = *m_settings;
    return BuildOptions(copy).getAt(scope, option, index);
}

void BuildService::setOption(const std::string& scope, const std::string& option, const std::string& value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    checkChangeable();
    BuildOptions(*m_settings).set(scope, option, value);
}

void BuildService::addOption(const std::string& scope, const std::string& option, const std::string& value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    checkChangeable();
    BuildOptions(*m_settings).add(scope, option, value);
}

void BuildService::removeOption(const std::string& scope, const std::string& option, const std::string& value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    checkChangeable();
    BuildOptions(*m_settings).remove(scope, option, value);
}

void BuildService::moveOption(const std::string& scope, const std::string& option, const std::string& value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    checkChangeable();
    BuildOptions(*m_settings).move(scope, option, value);
}

} // namespace quillon::services
