#include <gtest/gtest.h>

#include "TargetFixture.h"
#include "target/Hex.h"

namespace quillon::target {
namespace {

using TargetFault = TargetFixture;

TEST_F(TargetFault, FaultsStopWithKindAddressAndPlace)
{
    struct Case {
        const char* function;
        FaultKind fault;
        const char* addressSymbol; // data address of the fault, if any
        uint32_t address;
        const char* message;        // with %A for the address
    };
    const Case cases[] = {
        {"write_rom", FaultKind::WriteDenied, "g_rom_word", 0, "write to %A in area 'flash' without write access"},
        {"read_unmapped", FaultKind::UnmappedRead, nullptr, 0x30000000, "read from unmapped address %A"},
        {"undefined_instruction", FaultKind::UndefinedInstruction, nullptr, 0, "undefined instruction at %P"},
        {"jump_to_ram", FaultKind::FetchDenied, "g_ram_code", 0, "fetch from %A in area 'sram' without execute access"},
    };
    runToMain();
    MemoryMap::Snapshot start = target->snapshot();
    for (const Case& c : cases) {
        target->restore(start);
        StopInfo stop = call(c.function);
        EXPECT_EQ(stop.reason, StopReason::Fault) << c.function;
        EXPECT_EQ(stop.fault, c.fault) << c.function << ": " << stop.message;
        uint32_t address = c.addressSymbol ? sym(c.addressSymbol) : c.address;
        if (address != 0) {
            EXPECT_EQ(stop.address, address) << c.function;
        }
        // A fetch fault stops where the code was fetched; the others at the faulting instruction of the function.
        uint32_t pc = target->readRegister("pc");
        EXPECT_EQ(stop.pc, pc);
        EXPECT_TRUE(c.fault == FaultKind::FetchDenied ? pc == address : inFunction(pc, c.function))
            << c.function << " stopped at " << hex32(pc);
        if (c.fault == FaultKind::UndefinedInstruction) { // the udf itself, not the start of its translated block
            EXPECT_EQ(target->readMemory(pc + 1, 1)[0], 0xDE);
        }
        std::string message = c.message;
        if (auto at = message.find("%A"); at != std::string::npos) {
            message.replace(at, 2, hex32(address));
        }
        if (auto at = message.find("%P"); at != std::string::npos) {
            message.replace(at, 2, hex32(pc));
        }
        EXPECT_EQ(stop.message, message);
        EXPECT_FALSE(target->isRunning());
    }
}

TEST_F(TargetFault, TargetWorksOnAfterAFault)
{
    runToMain();
    ASSERT_EQ(call("read_unmapped").reason, StopReason::Fault);
    StopInfo again = target->runToStop();
    EXPECT_EQ(again.fault, FaultKind::UnmappedRead) << "a run from the faulting pc faults the same way";
    ASSERT_EQ(call("weighted_sum", {1, 2, 3, 4}).reason, StopReason::Returned);
    EXPECT_EQ(target->readRegister("r0"), 30u);
}

TEST_F(TargetFault, BranchWithoutThumbBitIsInvalidState)
{
    runToMain();
    prepareCall("weighted_sum", {1, 2, 3, 4});
    target->writeRegister("lr", sym("tick")); // code, but bit 0 clear: bx lr leaves Thumb state
    StopInfo stop = target->runToStop();
    EXPECT_EQ(stop.reason, StopReason::Fault);
    EXPECT_EQ(stop.fault, FaultKind::InvalidState) << stop.message;
    EXPECT_EQ(stop.pc, sym("tick"));
}

TEST_F(TargetFault, CpuModelDecidesTheInstructionSet)
{
    // filter_step divides with sdiv, which a Cortex-M0 does not have.
    for (const char* cpu : {"cortex-m0", "cortex-m3", "cortex-m4", "cortex-m7"}) {
        makeTarget(cpu);
        runToMain();
        StopInfo stop = call("filter_step", {100});
        bool m0 = std::string(cpu) == "cortex-m0";
        EXPECT_EQ(stop.reason, m0 ? StopReason::Fault : StopReason::Returned) << cpu << ": " << stop.message;
        if (m0) {
            EXPECT_EQ(stop.fault, FaultKind::UndefinedInstruction);
            EXPECT_TRUE(inFunction(stop.pc, "filter_step"));
        } else {
            EXPECT_EQ(target->readRegister("r0"), 100u);
        }
    }
}

} // namespace
} // namespace quillon::target
