#include "services/ToolProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

extern char** environ;

namespace quillon::services {

namespace {

/// Closes a descriptor when it goes.
class Descriptor {
public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_fd; }
    void close()
    {
        if (m_fd >= 0) {
            ::close(m_fd);
            m_fd = -1;
        }
    }

private:
    int m_fd;
};

} // namespace

ToolProcess::Result ToolProcess::run(const std::vector<std::string>& arguments, const std::filesystem::path& folder)
{
    Result result;
    if (arguments.empty()) {
        result.output = "no program to run\n";
        return result;
    }
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        result.output = std::string("cannot make a pipe: ") + std::strerror(errno) + "\n";
        return result;
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    std::string error;
    const pid_t pid = spawn(arguments, folder, writeEnd.get(), error);
    writeEnd.close();
    if (pid <= 0) {
        std::lock_guard<std::mutex> lock(m_mutex);
        result.stopped = m_stopped;
        result.output = m_stopped ? "" : error;
        return result;
    }
    result.output = readAll(readEnd.get());
    const int status = waitFor(pid);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = 0;
        result.stopped = m_stopped;
    }
    if (WIFEXITED(status)) {
        result.exitCode = WEXITSTATUS(status);
    }
    return result;
}

void ToolProcess::stop()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stopped = true;
    if (m_running > 0) {
        ::kill(-m_running, SIGKILL);
    }
}

void ToolProcess::reset()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stopped = false;
}

pid_t ToolProcess::spawn(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                         int writeEnd, std::string& error)
{
    std::vector<char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, writeEnd, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, writeEnd, STDERR_FILENO);
    if (!folder.empty()) {
        posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    }
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);

    pid_t pid = 0;
    int failure = 0;
    {
        // Under the lock, so that a stop either sees the child or comes before it exists.
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stopped) {
            posix_spawn_file_actions_destroy(&actions);
            posix_spawnattr_destroy(&attributes);
            return 0;
        }
        failure = posix_spawnp(&pid, argv[0], &actions, &attributes, argv.data(), environ);
        if (failure == 0) {
            m_running = pid;
        }
    }
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    if (failure != 0) {
        error = "cannot run '" + arguments[0] + "': " + std::strerror(failure) + "\n";
        return 0;
    }
    return pid;
}

std::string ToolProcess::readAll(int readEnd)
{
    std::string output;
    char buffer[4096];
    for (;;) {
        const ssize_t count = ::read(readEnd, buffer, sizeof buffer);
        if (count > 0) {
            output.append(buffer, std::size_t(count));
        } else if (count == 0 || errno != EINTR) {
            return output;
        }
    }
}

int ToolProcess::waitFor(pid_t pid)
{
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

} // namespace quillon::services
