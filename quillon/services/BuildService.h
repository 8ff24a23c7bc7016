#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "services/BuildDiagnostics.h"
#include "services/BuildSettings.h"
#include "services/ToolProcess.h"

namespace quillon::services {

/// Quillon's build manager over the workspace's build settings. A command starts a job on the service's own
/// thread and returns at once; the status says active until the job is done. The tools run in the
/// workspace's folder, one at a time, as child processes without a shell (a custom operation goes through
/// /bin/sh -c); their output is kept as the diagnostics of the job.
///
/// Jobs: compile (one source), link, make (a source is compiled when it, or a file named in its dependency
/// file, is newer than its object; the link runs when an object or the linker script is newer than the
/// output, or the output is missing), build (everything), dependencies (the dependency files alone), custom
/// operations (a command line of the settings, the parameters behind it). Objects and dependency files go to
/// "obj" beside the output, with the source's relative path: "build/obj/src/uart.o" for "src/uart.c".
///
/// A job ends idle, idle with errors (a tool failed, an error was counted, or it was stopped) or with a
/// configuration error (no build section, a toolchain, source or linker script that is missing, no sources
/// or no output), the diagnostics saying why. A command while a job is active is refused, as are a compile
/// of a file that is no source and an unknown custom operation (`BuildError`).
class BuildService {
public:
    /// The numbers are those of the automation interface.
    enum class State : std::uint32_t { Idle = 0, IdleWithErrors = 1, ConfigError = 2, Active = 3 };

    struct Status {
        State state = State::Idle;
        unsigned errors = 0;
        unsigned warnings = 0;
    };

    /// `folder` is the workspace's folder; no settings when the workspace has no build section.
    BuildService(std::filesystem::path folder, std::optional<BuildSettings> settings);
    /// Stops a running job and waits for it.
    ~BuildService();
    BuildService(const BuildService&) = delete;
    BuildService& operator=(const BuildService&) = delete;

    void compile(const std::string& file);
    void link();
    void make();
    void build();
    void dependencies();
    void custom(const std::string& operation, const std::string& parameters);
    /// Kills the running tool and ends the job; nothing when idle.
    void stop();
    /// Blocks until no job is active.
    void wait();

    Status status() const;
    /// The tools' output and the build manager's notes of the last job.
    std::string diagnostics() const;
    /// A copy of the settings as they stand now (for saving the workspace); none without a build section.
    std::optional<BuildSettings> settings() const;

    /// The options of `BuildOptions`, under the service's lock. Reading needs a build section; changing
    /// needs one and no active job (else BadConfiguration).
    std::string option(const std::string& scope, const std::string& option) const;
    std::optional<std::string> optionAt(const std::string& scope, const std::string& option, std::size_t index) const;
    void setOption(const std::string& scope, const std::string& option, const std::string& value);
    void addOption(const std::string& scope, const std::string& option, const std::string& value);
    void removeOption(const std::string& scope, const std::string& option, const std::string& value);
    void moveOption(const std::string& scope, const std::string& option, const std::string& value);

private:
    enum class Kind { Compile, Link, Make, Build, Dependencies, Custom };
    struct Job {
        Kind kind;
        std::string file;       ///< the source of a compile
        std::string command;    ///< the command line of a custom operation
    };

    void start(Job job);
    void run(const Job& job, const std::optional<BuildSettings>& settings);
    void finish(const BuildDiagnostics& diagnostics, State state);

    /// Runs the steps of a job; false for a configuration error (noted in `diagnostics`).
    bool runSteps(const Job& job, const BuildSettings& settings, BuildDiagnostics& diagnostics, bool& failed);
    bool checkConfiguration(const Job& job, const BuildSettings& settings, BuildDiagnostics& diagnostics) const;
    bool compileSource(const BuildSettings& settings, const std::string& source, BuildDiagnostics& diagnostics);
    bool writeDependencies(const BuildSettings& settings, const std::string& source, BuildDiagnostics& diagnostics);
    bool linkOutput(const BuildSettings& settings, BuildDiagnostics& diagnostics);
    bool runTool(const std::vector<std::string>& arguments, BuildDiagnostics& diagnostics);
    bool needsCompile(const BuildSettings& settings, const std::string& source) const;
    bool needsLink(const BuildSettings& settings) const;

    std::vector<std::string> compileArguments(const BuildSettings& settings, const std::string& source) const;
    std::filesystem::path objectOf(const BuildSettings& settings, const std::string& source) const;
    std::filesystem::path dependencyFileOf(const BuildSettings& settings, const std::string& source) const;
    std::filesystem::path inFolder(const std::filesystem::path& path) const;
    bool toolchainExists(const std::string& toolchain) const;
    /// The source of `sources` that `file` names (as written or as the same file); empty if none.
    std::string sourceNamed(const BuildSettings& settings, const std::string& file) const;

    void checkSettings() const;
    void checkChangeable() const;

    const std::filesystem::path m_folder;
    mutable std::mutex m_mutex;
    std::condition_variable m_idle;
    std::optional<BuildSettings> m_settings;
    Status m_status;
    std::string m_diagnostics;
    std::atomic<bool> m_stopRequested{false};
    ToolProcess m_tool;
    std::thread m_worker;
};

} // namespace quillon::services
