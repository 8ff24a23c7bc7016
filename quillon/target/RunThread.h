#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace quillon::target {

/// A thread that runs one job at a time: where a run goes on once the caller's budget is spent.
/// Started with the first job; the destructor waits for the job in hand and joins.
class RunThread {
public:
    RunThread() = default;
    ~RunThread();
    RunThread(const RunThread&) = delete;
    RunThread& operator=(const RunThread&) = delete;

    /// Hands over a job; the previous one must have ended. The job must not throw.
    void post(std::function<void()> job);

private:
    void loop();

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::function<void()> m_job;
    bool m_quit = false;
    std::thread m_thread;
};

} // namespace quillon::target
