#include <gtest/gtest.h>

#include "TargetFixture.h"
#include "target/TargetError.h"

namespace quillon::target {
namespace {

TEST(TargetConfig, BadConfigurationsAreRefused)
{
    struct Case {
        const char* what;
        TargetConfig config;
        const char* message;
    };
    TargetConfig unknownCpu = testConfig("arm7tdmi");
    TargetConfig unaligned = testConfig();
    unaligned.memory.push_back({"odd", 0x30000100, 0x400, MemoryArea::Read});
    TargetConfig overlap = testConfig();
    overlap.memory.push_back({"alias", 0x20008000, 0x10000, MemoryArea::Read});
    TargetConfig noClock = testConfig();
    noClock.clockHz = 0;
    const Case cases[] = {
        {"cpu", unknownCpu, "unknown CPU 'arm7tdmi' (known: cortex-m0, cortex-m3, cortex-m4, cortex-m7)"},
        {"alignment", unaligned, "memory area 'odd' must start and end on a 1024-byte boundary"},
        {"overlap", overlap, "memory area 'alias' overlaps area 'sram'"},
        {"clock", noClock, "the clock must be above 0 Hz"},
    };
    for (const Case& c : cases) {
        try {
            Target target(c.config);
            ADD_FAILURE() << c.what << " accepted";
        } catch (const TargetError& e) {
            EXPECT_EQ(e.kind(), TargetError::Kind::InvalidArgument) << c.what;
            EXPECT_STREQ(e.what(), c.message);
        }
    }
}

TEST(TargetConfig, ResetNeedsVectorTableAtZero)
{
    TargetConfig config;
    config.memory = {{"sram", 0x20000000, 0x1000, MemoryArea::Read | MemoryArea::Write}};
    Target target(config);
    EXPECT_EQ(target.stopInfo().reason, StopReason::None);
    try {
        target.reset();
        ADD_FAILURE() << "reset without a vector table";
    } catch (const TargetError& e) {
        EXPECT_EQ(e.kind(), TargetError::Kind::BadAddress);
    }
}

using TargetSetup = TargetFixture;

TEST_F(TargetSetup, ResetTakesStackAndEntryFromVectorTable)
{
    // The linker script puts the stack top at the end of SRAM and the vector table's word 1 is Reset_Handler|1.
    runToMain();
    target->writeRegister("r7", 77);
    target->writeRegister("control", 2);
    target->reset();
    EXPECT_EQ(target->readRegister("sp"), 0x20010000u);
    EXPECT_EQ(target->readRegister("msp"), 0x20010000u);
    EXPECT_EQ(target->readRegister("pc"), sym("Reset_Handler"));
    EXPECT_EQ(target->pc(), sym("Reset_Handler"));
    EXPECT_EQ(target->readRegister("lr"), 0xFFFFFFFFu);
    EXPECT_EQ(target->readRegister("xpsr"), 0x01000000u);
    EXPECT_EQ(target->readRegister("r7"), 0u);
    EXPECT_EQ(target->readRegister("control"), 0u);
    EXPECT_EQ(target->cycles(), 0u);
    EXPECT_EQ(target->stopInfo().reason, StopReason::Reset);
}

TEST_F(TargetSetup, StartupCodeCopiesDataAndClearsBss)
{
    uint32_t gain = sym("g_gain");
    target->writeMemory(sym("g_ticks"), std::vector<uint8_t>{1, 2, 3, 4}); // garbage where .bss lies
    EXPECT_EQ(target->readWord(gain), 0u) << "loaded at its flash address only";
    runToMain();
    EXPECT_EQ(target->readWord(gain), 1u);
    EXPECT_EQ(word("g_ticks"), 0u);
}

TEST_F(TargetSetup, RegistersByNameAndAlias)
{
    for (int i = 0; i <= 12; ++i) {
        target->writeRegister("R" + std::to_string(i), 0x1000u + i);
    }
    for (int i = 0; i <= 12; ++i) {
        EXPECT_EQ(target->readRegister(static_cast<Register>(i)), 0x1000u + i);
    }
    target->writeRegister("r13", 0x20000800);
    EXPECT_EQ(target->readRegister("SP"), 0x20000800u);
    EXPECT_EQ(target->readRegister("msp"), 0x20000800u) << "thread mode on the main stack";
    target->writeRegister("psp", 0x20000400);
    target->writeRegister("control", 2);
    EXPECT_EQ(target->readRegister("sp"), 0x20000400u) << "control.SPSEL selects the process stack";
    target->writeRegister("r15", sym("weighted_sum") | 1u);
    EXPECT_EQ(target->readRegister("pc"), sym("weighted_sum")) << "PC reads without the Thumb bit";
    target->writeRegister("primask", 1);
    EXPECT_EQ(target->readRegister("PRIMASK"), 1u);

    for (const char* bad : {"r16", "", "fp"}) {
        try {
            target->readRegister(bad);
            ADD_FAILURE() << bad;
        } catch (const TargetError& e) {
            EXPECT_EQ(e.kind(), TargetError::Kind::InvalidArgument);
            EXPECT_EQ(std::string(e.what()), std::string("unknown register '") + bad + "'");
        }
    }
    EXPECT_THROW(target->writeRegister("r99", 1), TargetError);
}

TEST_F(TargetSetup, DebuggerWritesToCodeTakeEffect)
{
    runToMain();
    ASSERT_EQ(call("weighted_sum", {1, 1, 1, 1}).reason, StopReason::Returned);
    ASSERT_EQ(target->readRegister("r0"), 10u);
    // The code is translated now; replace the function by "movs r0, #42; bx lr" in flash.
    target->writeMemory(sym("weighted_sum"), std::vector<uint8_t>{0x2a, 0x20, 0x70, 0x47});
    ASSERT_EQ(call("weighted_sum", {1, 1, 1, 1}).reason, StopReason::Returned);
    EXPECT_EQ(target->readRegister("r0"), 42u);
}

TEST_F(TargetSetup, MemoryOutsideAreasIsBadAddress)
{
    try {
        target->readMemory(0x30000000, 4);
        ADD_FAILURE();
    } catch (const TargetError& e) {
        EXPECT_EQ(e.kind(), TargetError::Kind::BadAddress);
        EXPECT_STREQ(e.what(), "no memory at 0x30000000");
    }
    EXPECT_THROW(target->writeMemory(0x2000FFFE, std::vector<uint8_t>{1, 2, 3, 4}), TargetError);
}

} // namespace
} // namespace quillon::target
