// The debug controllers against the simulated Quillon of liborbel.so and the example firmware.
// Skipped while liborbel.so or the firmware is not built, or while the simulated Quillon does not
// serve the debug interface yet (it answers E_NOTIMPL).

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "CDebugFacade.h"
#include "ConnectionMgr.h"
#include "IOException.h"
#include "OrbelDebugFlags.h"
#include "ScopedEnvironment.h"

using namespace kestrix;

namespace {

const std::string BUILD_DIR = ORBEL_BUILD_DIR;
const std::string FIRMWARE_FOLDER = std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware";

class CDebugFacadeLiveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(BUILD_DIR + "/liborbel.so")) {
            GTEST_SKIP() << "liborbel.so is not built in " << BUILD_DIR;
        }
        if (!std::filesystem::exists(FIRMWARE_FOLDER + "/build/firmware.elf")) {
            GTEST_SKIP() << "the example firmware is not built";
        }
        env.set("ORBEL_PATH", BUILD_DIR + "/");
        env.unset("ORBEL_SHAREDMEM_PID");
        env.unset("ORBEL_TCP_PORT");
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(FIRMWARE_FOLDER + "/workspace.yaml");
    }

    ScopedEnvironment env;
    std::shared_ptr<ConnectionMgr> mgr;
};

bool notServed(const IOException& e)
{
    return e.getDesc().find("E_NOTIMPL") != std::string::npos;
}

} // namespace

TEST_F(CDebugFacadeLiveTest, BreakRunReadStep)
{
    CDebugFacade debug(mgr);
    try {
        debug.download();
    } catch (const IOException& e) {
        if (notServed(e)) {
            GTEST_SKIP() << "the simulated Quillon does not serve downloads yet: " << e.getDesc();
        }
        throw;
    }
    debug.reset();
    const CMemAddress rbPut = debug.getFunctionAddress("rb_put");
    EXPECT_NE(0u, rbPut.getAddress());
    EXPECT_EQ(0, debug.setBP("rb_put"));

    debug.run();
    ASSERT_TRUE(debug.waitUntilStopped(10000, 10)) << "the breakpoint in rb_put stops the target";
    const CPUStatus status = debug.getCPUStatus();
    EXPECT_TRUE(status.isStopReasonBP());
    EXPECT_EQ("rb_put", debug.getSymbolAtAddress(OrbelDebugFlags::sFunctions, status.getExecutionArea(),
                                                 status.getExecutionPoint()));

    const CValueType level = debug.evaluate(OrbelDebugFlags::fMonitor, "g_level");
    EXPECT_FALSE(level.isError());
    const CValueType pc = debug.readRegister(OrbelDebugFlags::fMonitor, "PC");
    EXPECT_EQ(static_cast<long long>(status.getExecutionPoint()), pc.getLong());

    const CLineLocation before = debug.getSourceLineAtAddress(status.getExecutionPoint());
    EXPECT_NE(std::string::npos, before.getFileName().find("ring_buffer.c"));
    debug.stepHigh();
    ASSERT_TRUE(debug.waitUntilStopped(10000, 10));
    const CPUStatus stepped = debug.getCPUStatus();
    EXPECT_TRUE(stepped.isStopReasonStep());
    EXPECT_NE(status.getExecutionPoint(), stepped.getExecutionPoint());
    EXPECT_EQ(0, debug.deleteBP("rb_put"));
}
