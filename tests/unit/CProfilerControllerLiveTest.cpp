// The profiler controller against the simulated Quillon of liborbel.so, on the profiler test
// firmware whose functions run as tests. Skipped while liborbel.so or the firmware is not built.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "CProfilerController.h"
#include "CTestCase.h"
#include "ConnectionMgr.h"
#include "IOException.h"
#include "OrbelDebug2.h"
#include "OrbelDebugFlags.h"
#include "OrbelResults.h"
#include "SDownload.h"
#include "ScopedEnvironment.h"

using namespace kestrix;

namespace {

const std::string BUILD_DIR = ORBEL_BUILD_DIR;
const std::string FIRMWARE = BUILD_DIR + "/firmware/profiler.elf";

class CProfilerControllerLiveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(BUILD_DIR + "/liborbel.so") || !std::filesystem::exists(FIRMWARE)) {
            GTEST_SKIP() << "liborbel.so or the profiler firmware is not built: no target to measure";
        }
        env.set("ORBEL_PATH", BUILD_DIR + "/");
        env.unset("ORBEL_SHAREDMEM_PID");
        env.unset("ORBEL_TCP_PORT");
        const std::string folder =
            ::testing::TempDir() + "kx_" + std::to_string(getpid()) + "_profiler_live";
        std::filesystem::create_directories(folder);
        const std::string workspace = folder + "/workspace.yaml";
        std::ofstream(workspace) << "download:\n  - file: " << FIRMWARE << "\n";
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(workspace);
        profiler = std::make_unique<CProfilerController>(mgr);
        SDownload download;
        char noFile[1] = "";
        ASSERT_EQ(S_OK, profiler->getOrbelDebug2()->Download(OrbelDebugFlags::dlFromList, noFile, sizeof(noFile),
                                                             &download, nullptr, 0));
        testCase = std::make_shared<CTestCase>(mgr);
    }

    void TearDown() override
    {
        testCase.reset();
        profiler.reset();
        if (mgr) {
            mgr->disconnect();
        }
    }

    void runTest(const std::string& spec)
    {
        StrVector results;
        testCase->tessarCpp(spec, results);
        for (const std::string& result : results) {
            EXPECT_EQ("", result) << spec;
        }
    }

    ScopedEnvironment env;
    std::shared_ptr<ConnectionMgr> mgr;
    std::unique_ptr<CProfilerController> profiler;
    std::shared_ptr<CTestCase> testCase;
};

TEST_F(CProfilerControllerLiveTest, MeasuresCallsAndWrittenValuesOfATestRun)
{
    ASSERT_TRUE(profiler->getCapabilities().isAvailable());

    profiler->startConfiguration(1);
    profiler->addFunction("caller");
    profiler->addFunction("leaf");
    profiler->addVariable("g_state");
    profiler->start();
    EXPECT_TRUE(profiler->getStatus().isActive());
    runTest("func: [caller, [4], rv]\nexpect:\n- rv == 10\n");
    runTest("func: [walk, [4]]\n"); // writes 0 1 2 0
    ASSERT_TRUE(profiler->waitUntilLoaded(5000, 10));

    EXPECT_EQ(3u, profiler->getNumAreas());
    const CAreaProperties leaf = profiler->getAreaProperties("leaf");
    EXPECT_EQ(2u, leaf.getHandle());
    EXPECT_EQ("leaf", profiler->getAreaProperties(leaf.getHandle()).getName());
    EXPECT_EQ("leaf", profiler->getAreaProperties(0, leaf.getAddress()).getName());

    ProfilerStatisticVector leafStatistics;
    profiler->getStatisticsForHandle(leaf.getHandle(), 10, leafStatistics);
    ASSERT_EQ(1u, leafStatistics.size());
    EXPECT_EQ(4u, leafStatistics[0].getNumHits());
    EXPECT_GT(leafStatistics[0].getMinTime(), 0) << "in nanoseconds, a call takes some";
    EXPECT_EQ(leafStatistics[0].getMinTime(), leafStatistics[0].getMaxTime());

    ProfilerStatisticVector zeros;
    profiler->getStatisticsForValue(3, 0, 10, zeros);
    ASSERT_EQ(1u, zeros.size());
    EXPECT_EQ(0u, zeros[0].getValue());

    // caller in and out, four calls of leaf in and out, four writes: read in blocks of five.
    std::size_t read = 0;
    ProfilerHistoryVector history;
    do {
        profiler->getHistoryAll(static_cast<DWORD>(read), 5, history);
        read += history.size();
    } while (history.size() == 5);
    EXPECT_EQ(14u, read);
    profiler->getHistoryAll(0, 1, history);
    ASSERT_EQ(1u, history.size());
    EXPECT_TRUE(history[0].isActive()) << "the first entry is caller's";

    EXPECT_TRUE(profiler->stop());
    EXPECT_FALSE(profiler->stop());
    EXPECT_TRUE(profiler->getStatus().isIdle());
}

TEST_F(CProfilerControllerLiveTest, RefusalsCarryQuillonsReason)
{
    profiler->startConfiguration(0);
    try {
        profiler->addFunction("no_such_function");
        ADD_FAILURE() << "an unknown function was added";
    } catch (const IOException& e) {
        EXPECT_EQ(0u, e.getDesc().find("The area could not be added."));
        EXPECT_NE(std::string::npos, e.getDesc().find("no function 'no_such_function'")) << e.getDesc();
    }
    try {
        profiler->start();
        ADD_FAILURE() << "a configuration without areas started";
    } catch (const IOException& e) {
        EXPECT_EQ(0u, e.getDesc().find("Profiler can not be started."));
        EXPECT_NE(std::string::npos, e.getDesc().find("no area")) << e.getDesc();
    }
    try {
        profiler->getAreaProperties("nowhere");
        ADD_FAILURE() << "an unknown area was found";
    } catch (const IOException& e) {
        EXPECT_EQ("kestrix::CProfilerController::getResultAreafailed!", e.getDesc());
        EXPECT_NE(std::string::npos, e.getData().find("no profiler area named 'nowhere'")) << e.getData();
    }
}

} // namespace
