#pragma once

#include <sys/types.h>

#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

namespace quillon::services {

/// Runs one tool at a time as a child process, without a shell, in a folder of its choice, with its standard
/// and error output captured together. `stop` from another thread kills the running tool and everything it
/// started (the child leads a process group of its own), and refuses to start tools until `reset`.
class ToolProcess {
public:
    struct Result {
        /// The exit code; -1 if the tool could not be started or was killed.
        int exitCode = -1;
        /// Standard and error output as they came, or why the tool could not be started.
        std::string output;
        bool stopped = false;

        bool succeeded() const { return exitCode == 0 && !stopped; }
    };

    ToolProcess() = default;
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    /// Runs `arguments` (the first is the program, looked up in PATH when it has no '/') in `folder` and
    /// waits for it to end.
    Result run(const std::vector<std::string>& arguments, const std::filesystem::path& folder);
    /// Kills the running tool, if any; later runs end at once as stopped.
    void stop();
    /// Lets tools run again after a stop.
    void reset();

private:
    /// Starts the child with its output on `writeEnd`; its pid, or an error text in `error`.
    pid_t spawn(const std::vector<std::string>& arguments, const std::filesystem::path& folder, int writeEnd,
                std::string& error);
    static std::string readAll(int readEnd);
    static int waitFor(pid_t pid);

    std::mutex m_mutex;
    pid_t m_running = 0;
    bool m_stopped = false;
};

} // namespace quillon::services
