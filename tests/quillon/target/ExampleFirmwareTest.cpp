#include <gtest/gtest.h>

#include "TargetFixture.h"

namespace quillon::target {
namespace {

// The cases of examples/ring_buffer.yaml and examples/sensor_filter.yaml on the example firmware, called as the
// test service will call them. Offsets follow the C layouts of ring_t and filter_t.
constexpr uint32_t ringCount = 19;   // char data[16]; uint8_t size, head, tail, count
constexpr uint32_t filterSum = 16;   // int32_t samples[4]; int32_t sum; uint8_t count, next
constexpr uint32_t filterCount = 20;
constexpr uint32_t scratch = 0x20008000; // test locals, far below the stack

// The layout of examples/firmware/workspace.yaml, stopped at main.
class ExampleFirmware : public ::testing::Test {
protected:
    void SetUp() override
    {
        TargetConfig config;
        config.memory = {{"flash", 0x00000000, 0x40000, MemoryArea::Read | MemoryArea::Execute},
                         {"sram", 0x20000000, 0x10000, MemoryArea::Read | MemoryArea::Write | MemoryArea::Execute},
                         {"periph", 0x40010000, 0x10000, MemoryArea::Read | MemoryArea::Write}};
        target = std::make_unique<Target>(config);
        image.load(*target);
        target->reset();
        target->setReturnAddress(TargetFixture::returnAddress);
        RunOptions toMain;
        toMain.until = {image.symbol("main")};
        ASSERT_EQ(target->runToStop(toMain).reason, StopReason::RunUntilReached);
    }

    int32_t call(const std::string& function, std::vector<uint32_t> args = {})
    {
        prepareCall(*target, image.symbol(function), args);
        StopInfo stop = target->runToStop();
        EXPECT_EQ(stop.reason, StopReason::Returned) << function << ": " << stop.message;
        return static_cast<int32_t>(target->readRegister(Register::R0));
    }

    void writeByte(uint32_t address, uint8_t value) { target->writeMemory(address, &value, 1); }
    uint8_t readByte(uint32_t address) { return target->readMemory(address, 1)[0]; }

    const FirmwareImage image{KESTRIX_SOURCE_DIR "/examples/firmware/build/firmware.elf"};
    std::unique_ptr<Target> target;
};

TEST_F(ExampleFirmware, RingBufferCases)
{
    struct Case {
        const char* id;
        uint8_t count;
        char data0;
        bool get;
        int rv;
        uint8_t countAfter;
    };
    const Case cases[] = {
        {"rb.put", 0, 0, false, 1, 1},
        {"rb.full", 8, 0, false, 0, 8},
        {"rb.get", 1, 'q', true, 1, 0},
    };
    const uint32_t buf = scratch;
    const uint32_t out = scratch + 0x40;
    for (const Case& c : cases) {
        call("rb_init", {buf, 8});
        writeByte(buf + ringCount, c.count);
        writeByte(buf, static_cast<uint8_t>(c.data0));
        int rv = c.get ? call("rb_get", {buf, out}) : call("rb_put", {buf, 'x'});
        EXPECT_EQ(rv, c.rv) << c.id;
        EXPECT_EQ(readByte(buf + ringCount), c.countAfter) << c.id;
        if (c.get) {
            EXPECT_EQ(readByte(out), 'q') << c.id;
        }
    }
}

TEST_F(ExampleFirmware, SensorFilterCases)
{
    struct Case {
        const char* id;
        uint8_t count;
        int32_t sum;
        int32_t gain; // 0: not calibrated
        int32_t sample;
        int32_t rv;
    };
    const Case cases[] = {
        {"filter.first-sample", 0, 0, 0, 100, 100},
        {"filter.clamped.high", 3, 3000, 0, 5000, 1023},
        {"filter.clamped.low", 3, 3000, 0, -5, 0},
        {"filter.calibrated", 0, 0, 2, 400, 800},
    };
    const uint32_t filter = image.symbol("g_filter");
    for (const Case& c : cases) {
        writeByte(filter + filterCount, c.count);
        target->writeMemory(filter + filterSum, &c.sum, 4);
        if (c.gain != 0) {
            call("calibrate", {static_cast<uint32_t>(c.gain)});
        }
        EXPECT_EQ(call("filter_step", {static_cast<uint32_t>(c.sample)}), c.rv) << c.id;
        if (c.gain != 0) {
            call("reset_calibration");
            EXPECT_EQ(target->readWord(image.symbol("g_gain")), 1u);
        }
    }
    writeByte(filter + filterCount, 0);
    call("filter_step", {100});
    EXPECT_EQ(readByte(filter + filterCount), 1) << "filter.first-sample: g_filter.count == 1";
}

TEST_F(ExampleFirmware, MainLoopRunsForever)
{
    // With the converter reading 0, the level is 0 and the UART sends '0'.
    RunOptions options;
    options.instructionLimit = 200000;
    StopInfo stop = target->runToStop(options);
    EXPECT_EQ(stop.reason, StopReason::InstructionLimit) << stop.message;
    EXPECT_EQ(target->readWord(image.symbol("g_level")), 0u);
    EXPECT_EQ(target->readWord(0x40011004), uint32_t('0'));
}

} // namespace
} // namespace quillon::target
