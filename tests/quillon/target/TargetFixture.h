#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "FirmwareImage.h"
#include "target/Target.h"

namespace quillon::target {

/// Flash (rx) and SRAM (rw, no x: code there faults) of the test firmware.
TargetConfig testConfig(const std::string& cpu = "cortex-m3");

/// Arguments in r0 to r3, SP at the top of the stack, LR at the fixture's return address, PC at `entry`.
void prepareCall(Target& target, uint32_t entry, const std::vector<uint32_t>& args);

/// A target with the test firmware loaded and reset.
class TargetFixture : public ::testing::Test {
public:
    /// An address no code has: calls return there.
    static constexpr uint32_t returnAddress = 0x0FFFFF00;

protected:
    static const FirmwareImage& image();

    void SetUp() override { makeTarget("cortex-m3"); }
    void makeTarget(const std::string& cpu);

    uint32_t sym(const std::string& name) const { return image().symbol(name); }
    uint32_t word(const std::string& object) const { return target->readWord(sym(object)); }
    /// True when `address` lies in the function's code.
    bool inFunction(uint32_t address, const std::string& function) const;

    /// From reset through the startup code to main, so that .data and .bss are set up.
    void runToMain();
    void prepareCall(const std::string& function, const std::vector<uint32_t>& args)
    {
        quillon::target::prepareCall(*target, sym(function), args);
    }
    StopInfo call(const std::string& function, const std::vector<uint32_t>& args = {}, RunOptions options = {});

    std::unique_ptr<Target> target;
};

} // namespace quillon::target
