#include "TargetFixture.h"

namespace quillon::target {

TargetConfig testConfig(const std::string& cpu)
{
    TargetConfig config;
    config.cpu = cpu;
    config.memory = {{"flash", 0x00000000, 0x40000, MemoryArea::Read | MemoryArea::Execute},
                     {"sram", 0x20000000, 0x10000, MemoryArea::Read | MemoryArea::Write}};
    return config;
}

void prepareCall(Target& target, uint32_t entry, const std::vector<uint32_t>& args)
{
    const Register argRegs[] = {Register::R0, Register::R1, Register::R2, Register::R3};
    for (size_t i = 0; i < args.size() && i < 4; ++i) {
        target.writeRegister(argRegs[i], args[i]);
    }
    target.writeRegister(Register::SP, target.readWord(0));
    target.writeRegister(Register::LR, TargetFixture::returnAddress | 1u);
    target.writeRegister(Register::PC, entry);
}

const FirmwareImage& TargetFixture::image()
{
    static const FirmwareImage firmware(FIRMWARE_DIR "/target_test.elf");
    return firmware;
}

void TargetFixture::makeTarget(const std::string& cpu)
{
    target = std::make_unique<Target>(testConfig(cpu));
    image().load(*target);
    target->reset();
    target->setReturnAddress(returnAddress);
}

bool TargetFixture::inFunction(uint32_t address, const std::string& function) const
{
    return address >= sym(function) && address < sym(function) + image().symbolSize(function);
}

void TargetFixture::runToMain()
{
    RunOptions options;
    options.until = {sym("main")};
    StopInfo stop = target->runToStop(options);
    ASSERT_EQ(stop.reason, StopReason::RunUntilReached) << stop.message;
}

StopInfo TargetFixture::call(const std::string& function, const std::vector<uint32_t>& args, RunOptions options)
{
    prepareCall(function, args);
    return target->runToStop(options);
}

} // namespace quillon::target
