#include "Stopwatch.h"

#include "IllegalStateException.h"
#include "Platform.h"
#include "SystemException.h"

namespace kestrix {

Stopwatch::Stopwatch()
{
    uint64_t epoch = 0;
    if (!platform::systemTimeToFileTime(2000, 1, 1, 0, 0, 0, epoch)) {
        int code = platform::getLastError();
        throw SystemException(KX_POS, "Can not convert system time to file time.")
            .add("errorCode", code)
            .add("stdError", platform::formatMessage(code));
    }
    m_epoch = static_cast<int64_t>(epoch);
}

Stopwatch::~Stopwatch() = default;

void Stopwatch::start()
{
    if (m_running) {
        throw IllegalStateException(KX_POS, "Time measurement already started.");
    }
    m_startTime = static_cast<int64_t>(platform::getSystemTimeAsFileTime());
    m_running = true;
}

int64_t Stopwatch::getTime() const
{
    if (!m_running) {
        return m_accumulated;
    }
    return m_accumulated - m_startTime + static_cast<int64_t>(platform::getSystemTimeAsFileTime());
}

} // namespace kestrix
