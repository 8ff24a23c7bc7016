// Test runs of the example firmware on the simulated Quillon of liborbel.so. Skipped while
// liborbel.so or the firmware is not built.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "CTestCase.h"
#include "CTestCaseController.h"
#include "ConnectionMgr.h"
#include "Exceptions.h"
#include "OrbelDebug2.h"
#include "OrbelDebugFlags.h"
#include "OrbelResults.h"
#include "SDownload.h"
#include "ScopedEnvironment.h"
#include "WrapperBase.h"

using namespace kestrix;

namespace {

const std::string BUILD_DIR = ORBEL_BUILD_DIR;
const std::string WORKSPACE = std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware/workspace.yaml";
const std::string FIRMWARE = std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware/build/firmware.elf";

class CTestCaseLiveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(BUILD_DIR + "/liborbel.so") || !std::filesystem::exists(FIRMWARE)) {
            GTEST_SKIP() << "liborbel.so or the example firmware is not built: no target to test on";
        }
        env.set("ORBEL_PATH", BUILD_DIR + "/");
        env.unset("ORBEL_SHAREDMEM_PID");
        env.unset("ORBEL_TCP_PORT");
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(WORKSPACE);
        WrapperBase base(mgr);
        // The workspace's download list puts the firmware on the target.
        SDownload download;
        char noFile[1] = "";
        ASSERT_EQ(S_OK, base.getOrbelDebug2()->Download(OrbelDebugFlags::dlFromList, noFile, sizeof(noFile), &download,
                                                        nullptr, 0));
        testCase = std::make_shared<CTestCase>(mgr);
    }

    void TearDown() override
    {
        testCase.reset();
        if (mgr) {
            mgr->disconnect();
        }
    }

    StrVector run(const std::string& spec)
    {
        StrVector results;
        testCase->tessarCpp(spec, results);
        return results;
    }

    ScopedEnvironment env;
    std::shared_ptr<ConnectionMgr> mgr;
    std::shared_ptr<CTestCase> testCase;
};

const char* const EMPTY_FILTER = "init:\n"
                                 "  g_filter.count: 0\n"
                                 "  g_filter.sum: 0\n"
                                 "  g_filter.next: 0\n"
                                 "  g_gain: 1\n";

TEST_F(CTestCaseLiveTest, FunctionUnderTestWithParameterAndExpectations)
{
    const StrVector results = run(std::string(EMPTY_FILTER) + "func: [filter_step, [100], rv]\n"
                                                              "expect:\n"
                                                              "- rv == 100\n"
                                                              "- g_filter.count == 1\n"
                                                              "- g_filter.sum == 999\n");
    EXPECT_EQ((StrVector{"", "", "g_filter.sum == 999\n    g_filter.sum = 100"}), results);
}

TEST_F(CTestCaseLiveTest, LocalsPassedByAddressAndCharacterArrays)
{
    const StrVector results = run("locals:\n"
                                  "  rb: ring_t\n"
                                  "  text: 'char[8]'\n"
                                  "init:\n"
                                  "  rb.size: 4\n"
                                  "  rb.head: 0\n"
                                  "  rb.tail: 0\n"
                                  "  rb.count: 0\n"
                                  "  text: '\"hi\"'\n"
                                  "func: [rb_put, ['&rb', 65], ok]\n"
                                  "expect:\n"
                                  "- ok == 1\n"
                                  "- rb.count == 1 && rb.head == 1\n"
                                  "- rb.data[0] == 'A'\n"
                                  "- text[1] == 'i' && text[2] == 0\n");
    EXPECT_EQ((StrVector{"", "", "", ""}), results);
}

TEST_F(CTestCaseLiveTest, FaultEndsTheTestAbnormally)
{
    try {
        run("func: [rb_put, [0, 65], ok]\nexpect: [ok == 1]\n");
        FAIL() << "a write to flash ended normally";
    } catch (const IllegalStateException& e) {
        EXPECT_EQ("Test didn't end normally. State = stateUnexpectedStop", e.getDesc());
    }
    // The target is ready for the next test.
    EXPECT_EQ((StrVector{""}), run(std::string(EMPTY_FILTER) + "func: [filter_step, [8], rv]\nexpect: [rv == 8]\n"));
}

} // namespace
