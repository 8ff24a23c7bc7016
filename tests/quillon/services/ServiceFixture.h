#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "services/DebugService.h"
#include "services/ServiceError.h"
#include "target/Target.h"

namespace quillon::services {

/// The service test firmware's ELF and source file.
std::string servicesElf();
std::string servicesSource();

/// Flash (rx) at 0 and SRAM (rwx) at 0x20000000, as the example board's linker script has them.
target::TargetConfig boardConfig();

/// Runs f and returns the ServiceError it throws; fails the test when it throws none.
template <class F> ServiceError errorOf(F&& f)
{
    try {
        f();
    } catch (const ServiceError& e) {
        return e;
    }
    ADD_FAILURE() << "no ServiceError thrown";
    return ServiceError(ServiceError::Kind::Failed, "");
}

/// A debug service on the board with the service test firmware downloaded.
class ServiceFixture : public ::testing::Test {
protected:
    void SetUp() override;

    /// The number of the first source line of the test firmware that holds `text`.
    static unsigned lineOf(const std::string& text);
    /// The first code address of that line.
    std::uint32_t addressOfLine(const std::string& text) const;
    /// The ELF symbol table's address of a symbol, without the Thumb bit.
    static std::uint32_t elfSymbol(const std::string& name);

    std::uint32_t word(std::uint32_t address) const;
    void setWord(std::uint32_t address, std::uint32_t value);
    std::uint32_t reg(const std::string& name) const { return static_cast<std::uint32_t>(service->readRegister(name).bits); }
    /// The source line of the pc.
    unsigned line() const;
    std::string function() const { return service->functionAt(service->status().pc).value_or("?"); }
    /// Waits for the end of a run and returns the status.
    CpuStatus stopped() const;
    /// From reset to main's first line, through the startup code.
    void runToMain();

    std::unique_ptr<target::Target> target;
    std::unique_ptr<DebugService> service;
};

} // namespace quillon::services
