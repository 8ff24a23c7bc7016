#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "target/ExecutionObserver.h"

namespace quillon::services {

/// Collects what the firmware writes to a UART's data register: each write there adds its lowest byte to the
/// text, whatever its width. Writes come on the engine's thread; the text may be read from any thread.
class UartCapture final : public target::ExecutionObserver {
public:
    explicit UartCapture(std::uint32_t dataRegister) : m_dataRegister(dataRegister) {}

    std::uint32_t dataRegister() const { return m_dataRegister; }
    void setRecording(bool on) { m_recording.store(on, std::memory_order_relaxed); }
    std::string text() const;
    void clear();

    void onInstruction(std::uint32_t, std::uint32_t, std::uint64_t) override {}
    void onWrite(std::uint32_t address, std::uint32_t size, std::uint64_t value, std::uint64_t cycle) override;

private:
    const std::uint32_t m_dataRegister;
    std::atomic<bool> m_recording{false};
    mutable std::mutex m_mutex;
    std::string m_text;
};

} // namespace quillon::services
