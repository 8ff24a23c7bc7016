#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CExecutionController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"
#include "OrbelDebugFlags.h"

using namespace kestrix;

namespace {

class CExecutionControllerTest : public ControllerTest {
protected:
    /// RunControl answers `hr`; the command words sent are kept.
    void runControlAnswers(HRESULT hr)
    {
        answers().runControl = [this, hr](DWORD command, DWORD second, DWORD third) {
            sent.push_back(command);
            sentArgs.push_back({second, third});
            return hr;
        };
    }
    /// GetCPUStatus reports `status` each time.
    void cpuReports(BYTE status, BYTE area = 0, ADDRESS point = 0)
    {
        answers().getCPUStatus = [=](DWORD, SCPUStatus* record) {
            record->m_byStatus = status;
            record->m_byExecArea = area;
            record->m_aExecPoint = point;
            return S_OK;
        };
    }

    std::vector<DWORD> sent;
    std::vector<std::pair<DWORD, DWORD>> sentArgs;
};

} // namespace

TEST_F(CExecutionControllerTest, WaitModesBecomeCommandBits)
{
    runControlAnswers(S_OK);
    CExecutionController exec(mgr());
    EXPECT_EQ(0, exec.run());
    exec.run(1);
    exec.run(2);
    exec.run(3);
    exec.run(4);
    exec.run(7);
    exec.run(-1);
    EXPECT_EQ((std::vector<DWORD>{0x5, 0x485, 0x85, 0x885, 0xC85, 0x85, 0x85}), sent);
    sent.clear();
    exec.runUntilAddress(0, 0x1000, 2);
    exec.runUntilReturn(4);
    exec.resetAndRun(1);
    EXPECT_EQ((std::vector<DWORD>{0x8C, 0xC8D, 0x482}), sent);
    EXPECT_EQ((std::pair<DWORD, DWORD>{0, 0x1000}), sentArgs[sentArgs.size() - 3]);
}

TEST_F(CExecutionControllerTest, CommandsWithoutWaitMode)
{
    runControlAnswers(S_OK);
    CExecutionController exec(mgr());
    exec.reset();
    exec.stop();
    exec.stepInst();
    exec.stepOverInst();
    exec.stepHigh();
    exec.stepOverHigh();
    exec.gotoAddress(1, 0x80);
    exec.setPollingEnabled(false);
    exec.setPollingEnabled(true);
    EXPECT_EQ((std::vector<DWORD>{1, 4, 8, 9, 10, 11, 14, 0x100, 0x200}), sent);
    EXPECT_EQ("OrbelDebug.RunControl(0xE, 1, 0x80)", debugCalls()[6]);
}

TEST_F(CExecutionControllerTest, StillRunningIsReturnedOnlyByCommandsThatGo)
{
    runControlAnswers(ORBEL_E_STILL_RUNNING);
    CExecutionController exec(mgr());
    EXPECT_EQ(ORBEL_E_STILL_RUNNING, exec.run(2));
    EXPECT_EQ(ORBEL_E_STILL_RUNNING, exec.resetAndRun());
    EXPECT_EQ(ORBEL_E_STILL_RUNNING, exec.runUntilReturn());
    EXPECT_EQ(ORBEL_E_STILL_RUNNING, exec.runUntilAddress(0, 4));
    const std::string code = WrapperBase::resultCodeText(ORBEL_E_STILL_RUNNING);
    EXPECT_EQ("'Reset' command failed: " + code, thrownBy<IOException>([&] { exec.reset(); }).getDesc());
    EXPECT_EQ("'Stop' command failed: " + code, thrownBy<IOException>([&] { exec.stop(); }).getDesc());
}

TEST_F(CExecutionControllerTest, FailureTexts)
{
    runControlAnswers(E_FAIL);
    CExecutionController exec(mgr());
    const std::vector<std::pair<std::function<void()>, std::string>> operations = {
        {[&] { exec.run(); }, "'run' command failed: "},
        {[&] { exec.runUntilReturn(); }, "'runUntilReturn' command failed: "},
        {[&] { exec.runUntilAddress(0, 1); }, "'runUntilAddress' command failed: "},
        {[&] { exec.gotoAddress(0, 1); }, "'Goto Address' command failed: "},
        {[&] { exec.reset(); }, "'Reset' command failed: "},
        {[&] { exec.resetAndRun(); }, "'ResetAbdRun' command failed: "},
        {[&] { exec.stop(); }, "'Stop' command failed: "},
        {[&] { exec.stepHigh(); }, "'Step High' command failed: "},
        {[&] { exec.stepOverHigh(); }, "'Step Over High' command failed: "},
        {[&] { exec.stepInst(); }, "'Step Inst' command failed: "},
        {[&] { exec.stepOverInst(); }, "'Step Over Inst' command failed: "},
        {[&] { exec.setPollingEnabled(true); }, "'Set polling enabled' command failed: "},
    };
    for (const auto& operation : operations) {
        EXPECT_EQ(operation.second + "E_FAIL: kestrix.orbel call failed.",
                  thrownBy<IOException>(operation.first).getDesc());
    }
    answers().getCPUStatus = [](DWORD, SCPUStatus*) { return S_FALSE; };
    EXPECT_EQ("Can not get CPU status: Operation failed with error code S_FALSE.",
              thrownBy<IOException>([&] { exec.getCPUStatus(); }).getDesc());
}

TEST_F(CExecutionControllerTest, FunctionsAreResolvedFirst)
{
    runControlAnswers(S_OK);
    answers().getAddress = [](DWORD, const char* name, BYTE* area, ADDRESS* address, DWORD*, SType*) {
        if (std::string(name) != "main") {
            return S_FALSE;
        }
        *area = 0;
        *address = 0x1F0;
        return S_OK;
    };
    startLogger();
    CExecutionController exec(mgr());
    EXPECT_EQ(0, exec.runUntilFunction("main", 2));
    exec.gotoFunction("main");
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug.GetAddress(0x4000, main)", "OrbelDebug.RunControl(0x8C, 0, 0x1F0)",
                                        "OrbelDebug.GetAddress(0x4000, main)", "OrbelDebug.RunControl(0xE, 0, 0x1F0)"}),
              debugCalls());
    // A comment line for the function, then the nested call's own line.
    EXPECT_EQ(1u, loggedLines("execCtrlkestrix::CExecutionController::runUntilFunction('main', 2)").size())
        << loggedScript();
    EXPECT_EQ(1u, loggedLines("execCtrl.runUntilAddress(").size()) << loggedScript();

    sent.clear();
    EXPECT_EQ("'GetAddress(nothing)' command failed: Operation failed with error code S_FALSE.",
              thrownBy<IOException>([&] { exec.runUntilFunction("nothing"); }).getDesc());
    EXPECT_TRUE(sent.empty()) << "no run command after a failed lookup";
}

TEST_F(CExecutionControllerTest, StatusStatesAndStopReasons)
{
    struct Case {
        BYTE status;
        const char* state;
        const char* reason; // of a status with the reason asked for; "" for none
    };
    const std::vector<Case> cases = {
        {0x00, "mustInit", ""}, {0x11, "stopped", "explicit"}, {0x21, "stopped", "bp"}, {0x31, "stopped", "step"},
        {0x41, "stopped", "hw"}, {0x01, "stopped", ""},       {0x22, "running", ""},  {0x03, "reset", ""},
        {0x04, "halted", ""},   {0x05, "waiting", ""},      {0x06, "attach", ""},   {0x07, "idle", ""},
    };
    CExecutionController exec(mgr());
    for (const Case& c : cases) {
        SCOPED_TRACE(c.status);
        cpuReports(c.status, 2, 0x1234);
        const CPUStatus status = exec.getCPUStatus();
        const std::vector<std::pair<std::string, bool>> states = {
            {"mustInit", status.isMustInit()}, {"stopped", status.isStopped()}, {"running", status.isRunning()},
            {"reset", status.isReset()},       {"halted", status.isHalted()},   {"waiting", status.isWaiting()},
            {"attach", status.isAttach()},     {"idle", status.isIdle()},
        };
        for (const auto& state : states) {
            EXPECT_EQ(state.first == c.state, state.second) << state.first;
        }
        EXPECT_EQ(std::string(c.reason) == "explicit", status.isStopReasonExplicit());
        EXPECT_EQ(std::string(c.reason) == "bp", status.isStopReasonBP());
        EXPECT_EQ(std::string(c.reason) == "step", status.isStopReasonStep());
        EXPECT_EQ(std::string(c.reason) == "hw", status.isStopReasonHW());
        EXPECT_EQ(2, status.getExecutionArea());
        EXPECT_EQ(0x1234u, status.getExecutionPoint());
    }
    EXPECT_EQ("OrbelDebug.GetCPUStatus(0x100)", debugCalls().back());
    const CPUStatus unasked = exec.getCPUStatus(false);
    EXPECT_EQ("OrbelDebug.GetCPUStatus(0x0)", debugCalls().back());
    EXPECT_EQ("Stop reason is not available, because it was not requested!",
              thrownBy<IllegalArgumentException>([&] { unasked.isStopReasonBP(); }).getDesc());
}

TEST_F(CExecutionControllerTest, StatusText)
{
    CPUStatus status(true);
    status.getStructPtr()->m_byStatus = 'A';
    status.getStructPtr()->m_byExecArea = 'b';
    status.getStructPtr()->m_aExecPoint = 4096;
    EXPECT_EQ("CPUStatus:\n  status: A  execArea: b  execAddress: 4096", status.toString());
}

TEST_F(CExecutionControllerTest, WaitsEndOnTheirState)
{
    CExecutionController exec(mgr());
    cpuReports(OrbelDebugFlags::cpuStopped);
    EXPECT_TRUE(exec.waitUntilStopped(0, 60000));
    EXPECT_EQ(1u, debugCalls().size()) << "one status call, no sleep";
    for (BYTE state : {OrbelDebugFlags::cpuStopped, OrbelDebugFlags::cpuReset, OrbelDebugFlags::cpuMustInit}) {
        cpuReports(state);
        EXPECT_TRUE(exec.waitWhileRunning(1, 60000));
    }
    // Running for three polls, then stopped.
    int polls = 0;
    answers().getCPUStatus = [&](DWORD flags, SCPUStatus* record) {
        EXPECT_EQ(0u, flags) << "a wait never asks for the stop reason";
        record->m_byStatus = ++polls < 4 ? OrbelDebugFlags::cpuRunning : OrbelDebugFlags::cpuStopped;
        return S_OK;
    };
    EXPECT_TRUE(exec.waitUntilStopped(-5, 0));
    EXPECT_EQ(4, polls);
}

TEST_F(CExecutionControllerTest, WaitTimesOutOnARunningCPU)
{
    CExecutionController exec(mgr());
    cpuReports(OrbelDebugFlags::cpuRunning);
    EXPECT_FALSE(exec.waitUntilStopped(50, 5));
    EXPECT_GE(debugCalls().size(), 3u) << "polled until the time was up";
    answers().getCPUStatus = [](DWORD, SCPUStatus*) { return E_FAIL; };
    EXPECT_THROW(exec.waitWhileRunning(50, 5), IOException);
}
