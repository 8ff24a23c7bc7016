#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "CIDEController.h"
#include "CTestCase.h"
#include "CTestEnvironmentConfig.h"
#include "CTestSpecification.h"
#include "Exceptions.h"
#include "OrbelDebugFlags.h"
#include "TestServiceSupport.h"

using namespace kestrix;

namespace {

typedef OrbelDebugFlags D;

const char* const OPTION_TEST = "func: [filter_step, [], rv]\n"
                                "params: [100]\n"
                                "options:\n"
                                "  /IDE/Debug/StopOnReset: 1\n"
                                "  /Document/s/o: text\n";

class CTestCaseEnvironmentTest : public TestServiceTest {
protected:
    std::vector<std::string> callsWith(const std::string& prefix) const
    {
        std::vector<std::string> found;
        for (const std::string& call : seen().calls) {
            if (call.compare(0, prefix.size(), prefix) == 0) {
                found.push_back(call);
            }
        }
        return found;
    }
    /// Index of the first call that starts with `prefix`, or the number of calls.
    size_t firstCall(const std::string& prefix) const
    {
        const auto& calls = seen().calls;
        return size_t(std::find_if(calls.begin(), calls.end(),
                                   [&](const std::string& call) { return call.compare(0, prefix.size(), prefix) == 0; }) -
                      calls.begin());
    }
    void debugAnswers()
    {
        script().debug.runControl = [](DWORD, DWORD, DWORD) { return S_OK; };
        script().debug.getCPUStatus = [](DWORD, SCPUStatus* status) {
            status->m_byStatus = D::cpuStopped;
            return S_OK;
        };
        script().debug.getAddress = [](DWORD, const char*, BYTE* area, ADDRESS* address, DWORD*, SType*) {
            *area = 0;
            *address = 0x100;
            return S_OK;
        };
    }
};

struct EnvironmentCase {
    bool isInitTarget;
    bool download;
    bool reset;
    bool run;
    const char* stopFunction;
    std::vector<DWORD> commands;
};

} // namespace

TEST_F(CTestCaseEnvironmentTest, EnvironmentConnectsAndPreparesTheTarget)
{
    const EnvironmentCase cases[] = {
        {false, true, true, true, "main", {}},
        {true, false, false, false, "", {}},
        {true, true, false, false, "", {D::rcDownload}},
        {true, false, true, true, "", {D::rcReset, D::rcRun}},
        {true, true, true, true, "main", {D::rcDownload, D::rcReset, D::rcRunUntilAddress}},
    };
    debugAnswers();
    script().launchPort = 5000;
    for (const EnvironmentCase& c : cases) {
        // A manager that has loaded the library once, as connectMRU needs.
        auto fresh = std::make_shared<ConnectionMgr>();
        fresh->connect("", 5000);
        fresh->disconnect();
        CTestEnvironmentConfig config;
        config.setWorkspace("ws.yaml");
        config.setDownloadOnInit(c.download);
        config.setResetOnInit(c.reset);
        config.setRunOnInit(c.run);
        config.setStopFunction(c.stopFunction);
        const size_t before = seen().calls.size();
        {
            CTestCase testCase(fresh);
            testCase.initEnvironment(config, c.isInitTarget);
        }
        EXPECT_TRUE(fresh->isConnected());
        EXPECT_EQ("ws.yaml", seen().launch.workspace);
        const std::vector<std::string> all(seen().calls.begin() + long(before), seen().calls.end());
        std::vector<DWORD> these;
        for (const std::string& call : all) {
            if (call.compare(0, 22, "OrbelDebug.RunControl(") == 0) {
                these.push_back(DWORD(std::stoul(call.substr(22), nullptr, 16)) & D::rcCommandMask);
            }
        }
        EXPECT_EQ(c.commands, these) << c.isInitTarget << c.download << c.reset << c.run << c.stopFunction;
        const bool waits = std::any_of(all.begin(), all.end(), [](const std::string& call) {
            return call.compare(0, 23, "OrbelDebug.GetCPUStatus") == 0;
        });
        EXPECT_EQ(std::string(c.stopFunction) != "" && c.isInitTarget && c.run, waits);
        fresh.reset();
    }
}

TEST_F(CTestCaseEnvironmentTest, EnvironmentWithAConnectionRefusesToConnectAgain)
{
    CTestCase testCase(connected());
    CTestEnvironmentConfig config;
    EXPECT_THROW(testCase.initEnvironment(config, false), IllegalStateException);
}

TEST_F(CTestCaseEnvironmentTest, ControllerIsMadeForOptionsAndKept)
{
    CTestCase testCase(connected());
    auto plain = CTestSpecification::parseTestSpec("func: [f]\n");
    auto withOptions = CTestSpecification::parseTestSpec(OPTION_TEST);
    EXPECT_EQ(nullptr, testCase.createIDEController(plain));
    const auto made = testCase.createIDEController(withOptions);
    ASSERT_NE(nullptr, made);
    EXPECT_EQ(made, testCase.createIDEController(plain));
    EXPECT_EQ(made, testCase.createIDEController(withOptions));
    EXPECT_NO_THROW(testCase.setOptions(nullptr, withOptions));
    EXPECT_TRUE(callsWith("OrbelIDE3.Option(").empty());
}

TEST_F(CTestCaseEnvironmentTest, OptionsAreSetInTheirOrderAsNameValueText)
{
    script().ide.option = [](DWORD, const char*, const char*, SOptionValue*) { return S_OK; };
    CTestCase testCase(connected());
    auto spec = CTestSpecification::parseTestSpec(OPTION_TEST);
    testCase.setOptions(testCase.createIDEController(spec), spec);
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelIDE3.Option(0xE, Debug, , 0/0/0, StopOnReset:1, 0, 0.000000, 0)",
                  "OrbelIDE3.Option(0x1E, s, , 0/0/0, o:text, 0, 0.000000, 0)",
              }),
              callsWith("OrbelIDE3.Option("));
}

TEST_F(CTestCaseEnvironmentTest, RunSetsOptionsAfterCreatingTheTestAndBeforeItsParameters)
{
    script().ide.option = [](DWORD, const char*, const char*, SOptionValue*) { return S_OK; };
    CTestCase testCase(connected());
    StrVector results;
    testCase.runTest(CTestSpecification::parseTestSpec(OPTION_TEST), results);
    const size_t created = firstCall("Test.CreateTest(");
    const size_t option = firstCall("OrbelIDE3.Option(");
    const size_t parameter = firstCall("Test.CreateParameter(");
    EXPECT_LT(created, option);
    EXPECT_LT(option, parameter);
    EXPECT_LT(parameter, seen().calls.size());
}

TEST_F(CTestCaseEnvironmentTest, FailingOptionDestroysTheTestBeforeItsInit)
{
    script().ide.option = [](DWORD, const char*, const char* name, SOptionValue*) {
        return std::string(name).empty() ? ORBEL_E_ERROR : S_OK;
    };
    CTestCase testCase(connected());
    StrVector results;
    forgetCalls();
    const auto e = thrownBy<IOException>(
        [&] { testCase.runTest(CTestSpecification::parseTestSpec(OPTION_TEST), results); });
    EXPECT_EQ("'IDE3::Option()' command failed!", e.getDesc());
    const std::vector<std::string> calls = testCalls();
    EXPECT_NE(calls.end(), std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
                  return call.compare(0, 12, "DestroyTest(") == 0;
              }));
    EXPECT_EQ(calls.end(), std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
                  return call.compare(0, 10, "Control(1,") == 0;
              }));
    EXPECT_TRUE(results.empty());
}
