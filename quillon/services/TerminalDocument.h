#pragma once

#include <cstdint>
#include <string>

#include "services/Document.h"
#include "services/UartCapture.h"

namespace quillon::services {

/// The terminal: the text the firmware writes to the workspace's UART data register while the terminal records.
/// It records from its opening until stopped; its text is read by saving it as a file, which then holds the text
/// byte for byte. It has no file of its own, no saved form to read back, no triggers and no export.
class TerminalDocument final : public Document {
public:
    TerminalDocument(target::Target& target, std::uint32_t dataRegister);

    std::string text() const { return m_capture.text(); }

    void write(std::ostream& out) const override;
    void read(DocumentFileReader& in) override;

private:
    target::ExecutionObserver& observer() override { return m_capture; }
    bool watchesWrites() const override { return true; }
    void prepare(bool) override {}
    void setRecording(bool on) override { m_capture.setRecording(on); }
    void clearRecording() override { m_capture.clear(); }

    UartCapture m_capture;
};

} // namespace quillon::services
