#include "target/RunThread.h"

namespace quillon::target {

RunThread::~RunThread()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_quit = true;
    }
    m_wake.notify_one();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void RunThread::post(std::function<void()> job)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_job = std::move(job);
        if (!m_thread.joinable()) {
            m_thread = std::thread([this] { loop(); });
        }
    }
    m_wake.notify_one();
}

void RunThread::loop()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_quit || m_job; });
        if (!m_job) {
            return;
        }
        std::function<void()> job = std::move(m_job);
        m_job = nullptr;
        lock.unlock();
        job();
        lock.lock();
    }
}

} // namespace quillon::target
