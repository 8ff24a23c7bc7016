// The document, coverage and HIL controllers against the simulated Quillon of liborbel.so and the analyzer
// firmware (tests/firmware/analyzers): main writes "hello\n" to the UART and calls classify with 4, 0 and -5,
// which runs each of its 44 bytes and takes both of its branches both ways. Skipped while liborbel.so or the
// firmware is not built.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "CAnalyzerDocController.h"
#include "CCoverageController.h"
#include "CDebugFacade.h"
#include "CHILController.h"
#include "CTerminalDocController.h"
#include "ConnectionMgr.h"
#include "IVectorVariableDescriptors.h"
#include "IllegalArgumentException.h"
#include "ScopedEnvironment.h"

using namespace kestrix;

namespace {

const std::string BUILD_DIR = ORBEL_BUILD_DIR;
const std::string FIRMWARE = BUILD_DIR + "/firmware/analyzers.elf";

class AnalyzerControllersLiveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(BUILD_DIR + "/liborbel.so") || !std::filesystem::exists(FIRMWARE)) {
            GTEST_SKIP() << "liborbel.so or the analyzer firmware is not built in " << BUILD_DIR;
        }
        folder = std::filesystem::temp_directory_path()
                 / ("kestrix-analyzers-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "ws.yaml") << "target:\n"
                                             "  memory:\n"
                                             "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                                             "    - {name: sram, start: 0x20000000, size: 0x10000}\n"
                                             "    - {name: periph, start: 0x40000000, size: 0x30000, access: rw}\n"
                                             "download:\n"
                                             "  - file: "
                                          << FIRMWARE
                                          << "\nterminal:\n  uart: 0x40011004\n"
                                             "hil:\n"
                                             "  - {name: Setpoint, address: 0x40020000}\n"
                                             "  - {name: Gain, kind: analog, address: 0x40020004, initial: 2.5}\n";
        env.set("ORBEL_PATH", BUILD_DIR + "/");
        env.unset("ORBEL_SHAREDMEM_PID");
        env.unset("ORBEL_TCP_PORT");
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU((folder / "ws.yaml").string());
        debug = std::make_unique<CDebugFacade>(mgr);
        debug->download();
    }

    void TearDown() override
    {
        debug.reset();
        mgr.reset();
        std::filesystem::remove_all(folder);
    }

    void runFirmware()
    {
        debug->run();
        ASSERT_TRUE(debug->waitUntilStopped(10000, 10));
    }

    std::string fileText(const std::string& name)
    {
        std::ifstream in(folder / name, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

    std::filesystem::path folder;
    ScopedEnvironment env;
    std::shared_ptr<ConnectionMgr> mgr;
    std::unique_ptr<CDebugFacade> debug;
};

TEST_F(AnalyzerControllersLiveTest, CoverageOfTheIncludedFunctionAsTheTestRunConfiguresIt)
{
    CCoverageController coverage(mgr, "cov.trd", "w");
    EXPECT_TRUE(coverage.isCoverageAvailable());
    EXPECT_TRUE(coverage.isBranchCoverageAvailable());
    EXPECT_FALSE(coverage.isHWCoverageAvailable());
    EXPECT_FALSE(coverage.createRangeset("kestrix.test"));
    coverage.setConfiguration(CCoverageController::csIncludesOnly, 3, 0);
    coverage.addRangesetInclude(CCoverageController::rsFunction, "classify");
    coverage.start();
    runFirmware();
    coverage.stop();

    const CCoverageStatistic classify = coverage.getStatisticsForSymbol("classify");
    EXPECT_EQ(44u, classify.getBytesAll());
    EXPECT_EQ(44u, classify.getBytesExecutedAbs());
    EXPECT_EQ(2u, classify.getBranchesAll());
    EXPECT_EQ(2u, classify.getBranchesBothAbs());
    EXPECT_EQ(0u, coverage.getStatisticsForSymbol("note").getBytesAll()) << "not included";

    CCoverageController::RangeVector ranges;
    coverage.getActiveRanges(ranges, 100);
    ASSERT_EQ(1u, ranges.size());
    EXPECT_EQ(0xC0u, ranges[0].m_aAddress);
    EXPECT_EQ(0xEBu, ranges[0].m_aEnd);
    VectorBYTE bitmap;
    coverage.getCoverageBitmap(ranges[0].m_aAddress, ranges[0].m_aEnd, bitmap);
    EXPECT_EQ(44u, bitmap.size());

    coverage.exportAs(0, "cov.csv", 2);
    EXPECT_NE(std::string::npos, fileText("cov.csv").find("\nclassify,0x000000c0,0x000000eb,44,44,2,2,0,0,2\n"));
    coverage.closeDiscard();
}

TEST_F(AnalyzerControllersLiveTest, ATraceWithItsTriggerAndExportAndTheTerminal)
{
    CAnalyzerDocController trace(mgr, 0, "trace.trd", "w");
    CTerminalDocController terminal(mgr);
    trace.select("Trigger0");
    try {
        trace.select("Nope");
        ADD_FAILURE() << "an unknown trigger was selected";
    } catch (const IllegalArgumentException& e) {
        EXPECT_EQ("Check that trigger with the given name exists!", e.getDesc());
    }
    trace.start();
    EXPECT_TRUE(trace.isActive());
    runFirmware();
    trace.stop();
    EXPECT_FALSE(trace.isActive());
    trace.exportAs(0, "trace.csv", "CSV");
    const std::string csv = fileText("trace.csv");
    EXPECT_EQ(0u, csv.rfind("index,cycle,time_ns,event,address,function,value\n0,1,0.000,entry,", 0)) << csv;
    trace.save();
    EXPECT_TRUE(std::filesystem::exists(folder / "trace.trd"));

    terminal.saveAs("terminal.txt");
    EXPECT_EQ("hello\n", fileText("terminal.txt"));
    terminal.close();
    trace.closeDiscard();
}

TEST_F(AnalyzerControllersLiveTest, HilChannelsReadWriteAndDescribe)
{
    CHILController hil(mgr);
    EXPECT_EQ("Setpoint:0,Gain:2.5", hil.read(""));
    hil.write("Setpoint:10");
    EXPECT_EQ("Setpoint:10", hil.read("Setpoint"));
    IVectorVariableDescriptors* channels = hil.getDescriptors();
    ASSERT_NE(nullptr, channels);
    EXPECT_EQ(2u, channels->size());
}

} // namespace
