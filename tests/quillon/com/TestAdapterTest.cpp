// OrbelTest over the test service: the call sequence of a test run, result codes, buffers and the error classes
// of GetLastError.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "ComFixture.h"
#include "OrbelFlags.h"
#include "OrbelTest.h"
#include "OrbelTestFlags.h"
#include "services/OptionTree.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;
using Flags = OrbelTestFlags;

class TestAdapterTest : public ComFixture {
protected:
    TestAdapterTest() : test(query<OrbelTest>(object, IID_OrbelTest)) {}
    ~TestAdapterTest() override { test->Release(); }

    /// An attached instance with the test firmware downloaded.
    void SetUp() override
    {
        WORD port = 0;
        ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, workspaceFile("ws.yaml"), &port));
        ASSERT_EQ(S_OK, attach(port));
        instance = registry.instances().at(0);
        instance->debug().downloadFile(std::string(FIRMWARE_DIR) + "/testsvc.elf");
    }

    /// Polls the state as the client does while it is stateRunning.
    DWORD waitForStop(DWORD handle)
    {
        DWORD state = Flags::stateRunning;
        for (int i = 0; i < 2000 && state == Flags::stateRunning; ++i) {
            EXPECT_EQ(S_OK, test->GetStatus(Flags::tskTestState, handle, &state));
            if (state == Flags::stateRunning) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        }
        return state;
    }

    std::string evaluate(const char* expression)
    {
        char result[1024] = "";
        EXPECT_EQ(S_OK, test->Evaluate(1, expression, result, sizeof result)) << expression;
        return result;
    }

    void modify(const char* expression, const char* value)
    {
        char result[1024] = "";
        EXPECT_EQ(S_OK, test->Modify(0, expression, result, sizeof result, value)) << expression;
    }

    /// Class and text of OrbelTest::GetLastError.
    std::pair<DWORD, std::string> testError()
    {
        DWORD errorClass = 0;
        char text[1000] = "";
        EXPECT_EQ(S_OK, test->GetLastError(0, &errorClass, text, sizeof text));
        return {errorClass, text};
    }

    OrbelTest* test;
    std::shared_ptr<Instance> instance;
};

TEST_F(TestAdapterTest, ARunWithAStubHitTwiceEndsWithItsExpectations)
{
    DWORD handle = 0;
    ASSERT_EQ(S_OK, test->CreateTest(&handle, "read_two"));
    ASSERT_EQ(S_OK, test->CreateReturnValue(handle, "rv"));
    ASSERT_EQ(S_OK, test->CreateParameter(handle, 0, "kestrix___position_param_0"));
    ASSERT_EQ(S_OK, test->CreateParameter(handle, 1, "kestrix___position_param_1"));
    DWORD local = 0;
    ASSERT_EQ(S_OK, test->CreateVariable(&local, "counter", "int"));
    DWORD stub = 0;
    ASSERT_EQ(S_OK, test->CreateStub(&stub, "sensor"));
    EXPECT_NE(0u, stub);
    ASSERT_EQ(S_OK, test->CreateStubReturnValue(stub, "srv"));
    ASSERT_EQ(S_OK, test->CreateStubParameter(stub, 0, "channel"));
    ASSERT_EQ(S_OK, test->Control(Flags::tcInit, handle));

    modify("counter", "4");
    modify("g_calls", "0");
    modify("kestrix___position_param_0", "counter");
    modify("kestrix___position_param_1", "counter + 5");
    ASSERT_EQ(S_OK, test->Control(Flags::tcRun, handle));
    const int expectedChannels[] = {4, 9};
    for (int channel : expectedChannels) {
        ASSERT_EQ(DWORD(Flags::stateStub), waitForStop(handle));
        DWORD active = 0;
        ASSERT_EQ(S_OK, test->GetStatus(Flags::tskActiveStub, 0, &active));
        EXPECT_EQ(stub, active);
        EXPECT_EQ(std::to_string(channel), evaluate("channel"));
        modify("srv", "channel * 10");
        modify("g_calls", "g_calls + 1");
        DWORD state = 0;
        ASSERT_EQ(S_OK, test->GetStatus(Flags::tskTestState, handle, &state));
        EXPECT_EQ(DWORD(Flags::stateStub), state);
        ASSERT_EQ(S_OK, test->Control(Flags::tcRun, handle));
    }
    ASSERT_EQ(DWORD(Flags::stateEnded), waitForStop(handle));
    EXPECT_EQ("1", evaluate("rv == -50"));    // 40 - 90
    EXPECT_EQ("1", evaluate("g_calls == 3")); // twice in the stubs, once in read_two
    EXPECT_EQ("0", evaluate("kestrix___position_param_0 == 5"));

    EXPECT_EQ(S_OK, test->Control(Flags::tcClean, handle));
    EXPECT_EQ(S_OK, test->DestroyVariable(local));
    EXPECT_EQ(S_OK, test->DestroyStub(stub));
    EXPECT_EQ(S_OK, test->DestroyTest(handle));
    EXPECT_NE(S_OK, test->DestroyTest(handle));
}

TEST_F(TestAdapterTest, FailuresKeepTheirClassAndText)
{
    DWORD handle = 0;
    EXPECT_NE(S_OK, test->CreateTest(&handle, "no_such_function"));
    auto [errorClass, text] = testError();
    EXPECT_EQ(DWORD(Flags::tecIllegalArgument), errorClass);
    EXPECT_NE(std::string::npos, text.find("no_such_function")) << text;
    EXPECT_NE(std::string::npos, lastError().second.find("no_such_function")) << "Orbel's last error tells it too";

    ASSERT_EQ(S_OK, test->CreateTest(&handle, "add"));
    EXPECT_NE(S_OK, test->Control(Flags::tcRun, handle));
    std::tie(errorClass, text) = testError();
    EXPECT_EQ(DWORD(Flags::tecIllegalState), errorClass);
    EXPECT_NE(std::string::npos, text.find("stateOffline")) << text;

    struct {
        const char* what;
        HRESULT result;
    } badCalls[] = {
        {"unknown command", test->Control(9, handle)},
        {"unknown status kind", test->GetStatus(7, handle, &handle)},
        {"no result buffer", test->Evaluate(1, "1", nullptr, 0)},
        {"no value", test->Modify(0, "g_calls", nullptr, 0, nullptr)},
        {"no handle place", test->CreateStub(nullptr, "sensor")},
        {"used name", (test->CreateParameter(handle, 0, "a"), test->CreateParameter(handle, 1, "a"))},
    };
    for (const auto& call : badCalls) {
        EXPECT_EQ(E_FAIL, call.result) << call.what;
    }
    EXPECT_EQ(DWORD(Flags::tecIllegalArgument), testError().first);
    EXPECT_NE(std::string::npos, testError().second.find("'a' is used twice")) << testError().second;
    DWORD none = 0;
    EXPECT_EQ(E_INVALIDARG, test->GetLastError(0, &none, nullptr, 0));
}

TEST_F(TestAdapterTest, AFaultIsAnUnexpectedStopThatGetLastErrorExplains)
{
    DWORD handle = 0;
    ASSERT_EQ(S_OK, test->CreateTest(&handle, "poke"));
    ASSERT_EQ(S_OK, test->CreateReturnValue(handle, ""));
    ASSERT_EQ(S_OK, test->CreateParameter(handle, 0, "where"));
    ASSERT_EQ(S_OK, test->Control(Flags::tcInit, handle));
    modify("where", "0");
    ASSERT_EQ(S_OK, test->Control(Flags::tcRun, handle));
    EXPECT_EQ(DWORD(Flags::stateUnexpectedStop), waitForStop(handle));
    const auto [errorClass, text] = testError();
    EXPECT_EQ(DWORD(Flags::tecIO), errorClass);
    EXPECT_NE(std::string::npos, text.find("faulted")) << text;
    EXPECT_NE(std::string::npos, text.find("'poke' (testsvc.c:")) << text;

    EXPECT_EQ(S_OK, test->Control(Flags::tcClearAll, 0));
    DWORD state = 0;
    EXPECT_NE(S_OK, test->GetStatus(Flags::tskTestState, handle, &state)) << "clear all removes every test";
}

TEST_F(TestAdapterTest, TheInstructionLimitIsTheInstancesOptionAtEachRun)
{
    instance->options().set(services::OptionTree::kMaxInstructions, "5000");
    DWORD handle = 0;
    ASSERT_EQ(S_OK, test->CreateTest(&handle, "spin"));
    ASSERT_EQ(S_OK, test->Control(Flags::tcInit, handle));
    ASSERT_EQ(S_OK, test->Control(Flags::tcRun, handle));
    EXPECT_EQ(DWORD(Flags::stateUnexpectedStop), waitForStop(handle));
    const std::string text = testError().second;
    EXPECT_NE(std::string::npos, text.find("did not end within 5000 instructions")) << text;
}

TEST_F(TestAdapterTest, ResultsAreCutToTheBuffer)
{
    DWORD handle = 0;
    ASSERT_EQ(S_OK, test->CreateTest(&handle, "add"));
    ASSERT_EQ(S_OK, test->Control(Flags::tcInit, handle));
    char small[4] = "xyz";
    ASSERT_EQ(S_OK, test->Evaluate(1, "123456", small, sizeof small));
    EXPECT_STREQ("123", small);
}

TEST_F(TestAdapterTest, WithoutASessionEveryCallIsNotConnected)
{
    ASSERT_EQ(S_OK, orbel->Detach(0));
    DWORD handle = 0;
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, test->CreateTest(&handle, "add"));
    EXPECT_EQ(DWORD(Flags::tecIllegalState), testError().first);
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, test->Control(Flags::tcClearAll, 0));
}

} // namespace
} // namespace quillon::com::test
