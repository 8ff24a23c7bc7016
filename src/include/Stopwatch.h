#pragma once

#include <cstdint>

namespace kestrix {

/// Wall-clock timer of the polling waits, in 100 ns units.
class Stopwatch {
public:
    Stopwatch();
    virtual ~Stopwatch();

    void start();
    /// Time so far: accumulated, less the start time, plus the current time while running.
    int64_t getTime() const;
    int64_t getTimeMs() const { return getTime() / 10000; }
    bool isRunning() const { return m_running; }

private:
    int64_t m_accumulated = 0;
    int64_t m_startTime = 0;
    int64_t m_epoch = 0;
    bool m_running = false;
};

} // namespace kestrix
