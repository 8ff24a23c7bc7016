#include "services/UartCapture.h"

namespace quillon::services {

std::string UartCapture::text() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_text;
}

void UartCapture::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_text.clear();
}

void UartCapture::onWrite(std::uint32_t address, std::uint32_t, std::uint64_t value, std::uint64_t)
{
    if (address != m_dataRegister || !m_recording.load(std::memory_order_relaxed)) {
        return;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_text.push_back(static_cast<char>(value & 0xFF));
}

} // namespace quillon::services
