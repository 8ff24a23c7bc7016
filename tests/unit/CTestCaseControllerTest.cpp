// The test controllers against the recording double: the calls of the test service with their
// arguments, the states, and the translation of failures into the library's exceptions.

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "CTestCaseController.h"
#include "CTestStubController.h"
#include "CTestVariableController.h"
#include "Exceptions.h"
#include "TestServiceSupport.h"

using namespace kestrix;

namespace {

typedef std::vector<std::string> Calls;

/// The calls behind the first `count`.
Calls after(const Calls& calls, size_t count)
{
    return count <= calls.size() ? Calls(calls.begin() + static_cast<long>(count), calls.end()) : Calls();
}

/// The last `count` calls.
Calls last(const Calls& calls, size_t count)
{
    return count <= calls.size() ? after(calls, calls.size() - count) : calls;
}

/// The data lines an exception shows for `items`, in order.
std::string dataOf(const std::vector<std::pair<std::string, std::string>>& items)
{
    std::string data = "  data:\n";
    for (const auto& item : items) {
        data += "    " + item.first + ": " + item.second + "\n";
    }
    return data;
}

class CTestCaseControllerTest : public TestServiceTest {
protected:
    std::shared_ptr<CTestCaseController> newTest(const std::string& function = "filter_step",
                                                 const std::string& retVal = "rv")
    {
        return std::make_shared<CTestCaseController>(connected(), function, retVal);
    }

    /// The exception that `action` throws, of the family's base.
    static const IException* failureOf(const std::function<void()>& action, std::string& kind)
    {
        static std::unique_ptr<IException> kept;
        kept.reset();
        try {
            action();
        } catch (const IllegalStateException& e) {
            kind = "IllegalState";
            kept.reset(new IException(e));
        } catch (const IllegalArgumentException& e) {
            kind = "IllegalArgument";
            kept.reset(new IException(e));
        } catch (const IOException& e) {
            kind = "IO";
            kept.reset(new IException(e));
        } catch (const IException& e) {
            kind = "other";
            kept.reset(new IException(e));
        }
        return kept.get();
    }
};

TEST_F(CTestCaseControllerTest, ConstructionCreatesTheTestOrSaysWhyNot)
{
    const auto test = newTest("filter_step", "rv");
    const auto noReturn = newTest("filter_init", "");
    EXPECT_EQ((Calls{"CreateTest(filter_step)", "CreateReturnValue(7, rv)", "CreateTest(filter_init)",
                     "CreateReturnValue(7, )"}),
              testCalls());
    forgetCalls();

    EXPECT_EQ("Function name must not be empty string!",
              thrownBy<IllegalArgumentException>([&] { newTest(""); }).getDesc());
    script().build = 14;
    EXPECT_EQ("Invalid quillon version!", thrownBy<VersionConflictException>([&] { newTest(); }).getDesc());
    EXPECT_TRUE(testCalls().empty()) << "nothing reaches the test service";
    script().build = 15;
    EXPECT_NO_THROW(newTest());

    service.failing["CreateTest"] = E_FAIL;
    EXPECT_EQ("TestCaseController creation failed!", thrownBy<IllegalStateException>([&] { newTest(); }).getDesc());
    service.failing = {{"CreateReturnValue", E_FAIL}};
    EXPECT_EQ("Creation of variable for return value failed!",
              thrownBy<IllegalStateException>([&] { newTest(); }).getDesc());

    mgr.reset();
    script().missing = {"OrbelTest"};
    EXPECT_EQ("'Test' interface is not available. Make sure that application is connected to quillon (see "
              "ConnectionMgr.connect...())!",
              thrownBy<IOException>([&] { newTest(); }).getDesc());
}

TEST_F(CTestCaseControllerTest, ErrorClassChoosesTheException)
{
    const auto data = [](const std::string& orbelErr) {
        return dataOf({{"orbelErr", orbelErr}, {"handle", "7"}, {"objId", "testCaseCtrl_filter_step"}});
    };
    const std::string noCode = "kestrix.test call failed, but GetLastError() didn't return error code! ";
    const std::string info = "  data:\n    info: Method 'run()' failed! \n";
    struct Case {
        DWORD errorClass;
        bool lastErrorFails;
        std::string kind;
        std::string desc;
        std::string data;
    } cases[] = {
        {1, false, "IllegalState", "Method 'run()' failed! ", data("target faulted")},
        {2, false, "IllegalArgument", "Method 'run()' failed! ", data("target faulted")},
        {3, false, "IO", "Method 'run()' failed! ", data("target faulted")},
        {77, false, "IO", "Method 'run()' failed! ", data("target faulted")},
        {0, false, "IllegalState", noCode, info + data("target faulted").substr(8)},
        {2, true, "IllegalState", noCode, info + data("GetLastError failed!").substr(8)},
    };
    auto test = newTest();
    for (const Case& c : cases) {
        service.errorClass = c.errorClass;
        service.lastErrorFails = c.lastErrorFails;
        service.errorText = "target faulted";
        service.failing = {{"Control:3", ORBEL_E_ERROR}};
        std::string kind;
        const IException* e = failureOf([&] { test->run(); }, kind);
        ASSERT_NE(nullptr, e) << c.errorClass;
        EXPECT_EQ(c.kind, kind) << c.errorClass;
        EXPECT_EQ(c.desc, e->getDesc()) << c.errorClass;
        EXPECT_EQ(c.data, e->getData()) << c.errorClass;
    }
    forgetCalls();
    service.lastErrorFails = false;
    std::string kind;
    failureOf([&] { test->run(); }, kind);
    EXPECT_EQ((Calls{"Control(3, 7)", "GetLastError(0, 1000)"}), testCalls());
}

TEST_F(CTestCaseControllerTest, VerifyRetValPassesSuccessWithoutAsking)
{
    EXPECT_NO_THROW(CTestCaseController::verifyRetVal(nullptr, S_OK, "unused", 0, ""));
    // No service at all still gives the library's own failure.
    const auto e = thrownBy<IllegalStateException>(
        [] { CTestCaseController::verifyRetVal(nullptr, E_FAIL, "Method 'x()' failed!", 3, "obj"); });
    EXPECT_EQ(dataOf({{"info", "Method 'x()' failed!"}, {"orbelErr", "GetLastError failed!"}, {"handle", "3"},
                      {"objId", "obj"}}),
              e.getData());
}

TEST_F(CTestCaseControllerTest, ControlCommandsAndTheirFailures)
{
    struct Case {
        std::function<void(CTestCaseController&)> action;
        DWORD command;
        std::string message;
    } cases[] = {
        {[](CTestCaseController& c) { c.init(); }, 1, "Method 'init()' failed! "},
        {[](CTestCaseController& c) { c.clean(); }, 2, "Method 'clean()' failed! "},
        {[](CTestCaseController& c) { c.run(); }, 3, "Method 'run()' failed! "},
        {[](CTestCaseController& c) { c.abort(); }, 4, "Method 'abort()' failed! "},
        {[](CTestCaseController& c) { c.pause(); }, 5, "Method 'pause()' failed! "},
    };
    auto test = newTest();
    for (const Case& c : cases) {
        forgetCalls();
        service.failing.clear();
        c.action(*test);
        EXPECT_EQ(Calls{"Control(" + std::to_string(c.command) + ", 7)"}, testCalls());
        service.failing["Control:" + std::to_string(c.command)] = E_FAIL;
        EXPECT_EQ(c.message, thrownBy<IllegalStateException>([&] { c.action(*test); }).getDesc());
    }
}

TEST_F(CTestCaseControllerTest, ClearAllTestsUsesHandleZero)
{
    CTestCaseController::clearAllTests(connected());
    EXPECT_EQ(Calls{"Control(0, 0)"}, testCalls());

    service.failing["Control:0"] = E_FAIL;
    service.errorText = "busy";
    const auto e = thrownBy<IllegalStateException>([&] { CTestCaseController::clearAllTests(connected()); });
    EXPECT_EQ("Method 'clearAllTests()' failed! ", e.getDesc());
    EXPECT_EQ(dataOf({{"orbelErr", "busy"}, {"handle", "0"}, {"objId", "''"}}), e.getData());
}

TEST_F(CTestCaseControllerTest, StatusKindsAndTheActiveStub)
{
    auto test = newTest();
    auto adc = test->createStub("adc_read");
    auto uart = test->createStub("uart_putc");
    service.stops = {stubStop("uart_putc")};
    test->run();
    forgetCalls();
    EXPECT_EQ(DWORD(OrbelTestFlags::stateStub), test->getStatus());
    EXPECT_EQ(uart->getHandle(), test->getStatus(2)) << "kind 2 answers the stub's handle";
    EXPECT_EQ(uart, test->getActiveStub());
    EXPECT_EQ((Calls{"GetStatus(3, 7)", "GetStatus(2, 7)", "GetStatus(2, 0)"}), testCalls());

    service.activeStub = "unknown";
    const auto missing = thrownBy<IllegalStateException>([&] { test->getActiveStub(); });
    EXPECT_EQ("Stub controller not found!", missing.getDesc());
    EXPECT_EQ(dataOf({{"instanceId", "testCaseCtrl_filter_step"}}), missing.getData());

    service.activeStub = "adc_read";
    service.failing["GetStatus:2"] = E_FAIL;
    const auto failed = thrownBy<IllegalStateException>([&] { test->getActiveStub(); });
    EXPECT_EQ("Method 'getActiveStub()' failed!", failed.getDesc());
    EXPECT_NE(std::string::npos, failed.getData().find("handle: " + std::to_string(adc->getHandle())))
        << "the handle read is reported";
    service.failing = {{"GetStatus:3", E_FAIL}};
    EXPECT_EQ("Method 'getStatus()' failed!", thrownBy<IllegalStateException>([&] { test->getStatus(); }).getDesc());
}

TEST_F(CTestCaseControllerTest, EvaluateAndModifyPassTheirTexts)
{
    auto test = newTest();
    service.values["g_filter.count"] = "3";
    forgetCalls();
    EXPECT_EQ("3", test->evaluate("g_filter.count"));
    EXPECT_EQ("3", test->evaluate("g_filter.count", 1));
    EXPECT_EQ("42", test->modify("rv", "42"));
    test->modify("buf[0]", "'a'", 4);
    EXPECT_EQ((Calls{"Evaluate(0, g_filter.count, 1024)", "Evaluate(1, g_filter.count, 1024)",
                     "Modify(0, rv, 1024, 42)", "Modify(4, buf[0], 1024, 'a')"}),
              testCalls());

    const auto unknown = thrownBy<IllegalArgumentException>([&] { test->evaluate("nothing"); });
    EXPECT_EQ("Method 'evaluate()' failed for expression: 'nothing'", unknown.getDesc());
    EXPECT_NE(std::string::npos, unknown.getData().find("orbelErr: no symbol 'nothing'"));
    service.errorClass = OrbelTestFlags::tecIllegalState;
    service.failing["Modify:rv"] = E_FAIL;
    EXPECT_EQ("Method 'modify()' failed! Expression: 'rv = 42'",
              thrownBy<IllegalStateException>([&] { test->modify("rv", "42"); }).getDesc());
}

TEST_F(CTestCaseControllerTest, EvaluateReadsTheBufferOnlyToItsEnd)
{
    auto test = newTest();
    // A server that fills the whole buffer without a terminating zero.
    answers().evaluate = [](DWORD, const char*, char* result, DWORD size) {
        std::fill(result, result + size, 'x');
        return S_OK;
    };
    EXPECT_EQ(std::string(1024, 'x'), test->evaluate("anything"));
}

TEST_F(CTestCaseControllerTest, WaitUntilStoppedPollsWhileRunning)
{
    auto test = newTest();
    test->run();
    service.runningPolls = 3;
    test->run();
    forgetCalls();
    EXPECT_TRUE(test->waitUntilStopped(0, 1));
    EXPECT_EQ(4u, testCalls().size()) << "three running answers, then the stop";

    forgetCalls();
    EXPECT_TRUE(test->waitUntilStopped()) << "a test that is not running";
    EXPECT_EQ(Calls{"GetStatus(3, 7)"}, testCalls());

    service.runningPolls = 1000000;
    test->run();
    EXPECT_FALSE(test->waitUntilStopped(20, 5)) << "the time-out ends a wait on a target that keeps running";
}

TEST_F(CTestCaseControllerTest, DestroyGoesFromVariablesAndStubsToTheTestOnce)
{
    auto test = newTest();
    test->createVariable("i", "int");
    auto held = test->createVariable("buf", "char[16]");
    test->createStub("adc_read");
    forgetCalls();
    test->destroy();
    test->destroy();
    EXPECT_EQ((Calls{"DestroyVariable(100)", "DestroyStub(102)", "DestroyTest(7)"}), testCalls())
        << "a variable the caller holds lives on";
    forgetCalls();
    held.reset();
    EXPECT_EQ(Calls{"DestroyVariable(101)"}, testCalls());
}

TEST_F(CTestCaseControllerTest, CreateVariableReplacesOneOfTheSameName)
{
    auto test = newTest();
    auto first = test->createVariable("i", "int");
    test->createVariable("i", "long");
    forgetCalls();
    first.reset();
    EXPECT_EQ(Calls{"DestroyVariable(100)"}, testCalls()) << "the map no longer holds the first one";
    forgetCalls();
    test.reset();
    EXPECT_EQ((Calls{"DestroyVariable(101)", "DestroyTest(7)"}), testCalls()) << "the destructor destroys";
}

TEST_F(CTestCaseControllerTest, DestructorsSwallowFailures)
{
    auto test = newTest();
    test->createStub("adc_read");
    service.failing = {{"DestroyStub", E_FAIL}, {"DestroyTest", E_FAIL}};
    EXPECT_NO_THROW(test.reset());
    EXPECT_EQ((Calls{"DestroyStub(100)", "GetLastError(0, 1000)", "DestroyTest(7)", "GetLastError(0, 1000)"}),
              last(testCalls(), 4));

    auto again = newTest();
    service.failing = {{"DestroyTest", E_FAIL}};
    EXPECT_EQ("Can't destroy test case!", thrownBy<IllegalStateException>([&] { again->destroy(); }).getDesc());
}

TEST_F(CTestCaseControllerTest, ParametersOfTestAndStub)
{
    auto test = newTest();
    test->createParameter(0, "kestrix___position_param_0");
    auto stub = test->createStub("adc_read");
    stub->createParameter(1, "channel");
    stub->createReturnValue("adcValue");
    EXPECT_EQ((Calls{"CreateParameter(7, 0, kestrix___position_param_0)", "CreateStub(adc_read)",
                     "CreateStubParameter(100, 1, channel)", "CreateStubReturnValue(100, adcValue)"}),
              after(testCalls(), 2));
    EXPECT_EQ("", stub->getRetValName()) << "the two-argument stub keeps no return value name";
    EXPECT_EQ("adc_read", stub->getStubName());

    service.failing = {{"CreateParameter", E_FAIL}, {"CreateStubParameter", E_FAIL}, {"CreateStubReturnValue", E_FAIL}};
    EXPECT_EQ("Method 'createParameter()' failed! parameter: x",
              thrownBy<IllegalStateException>([&] { test->createParameter(1, "x"); }).getDesc());
    const auto stubParam = thrownBy<IllegalStateException>([&] { stub->createParameter(0, "channel"); });
    EXPECT_EQ("Test stub parameter creation failed!", stubParam.getDesc());
    EXPECT_EQ(dataOf({{"orbelErr", "simulated failure"}, {"handle", "100"}, {"objId", "adc_read / channel"}}),
              stubParam.getData());
    const auto stubReturn = thrownBy<IllegalStateException>([&] { stub->createReturnValue("v"); });
    EXPECT_EQ("Test stub return value creation failed!", stubReturn.getDesc());
    EXPECT_NE(std::string::npos, stubReturn.getData().find("objId: adc_read / v"));
}

TEST_F(CTestCaseControllerTest, StubControllerWithReturnValueName)
{
    CTestStubController named(connected(), "adc_read", "adcValue");
    CTestStubController unnamed(connected(), "uart_putc", "");
    EXPECT_EQ("adcValue", named.getRetValName());
    EXPECT_EQ((Calls{"CreateStub(adc_read)", "CreateStubReturnValue(100, adcValue)", "CreateStub(uart_putc)"}),
              testCalls());

    const auto empty = thrownBy<IllegalArgumentException>([&] { CTestStubController(connected(), ""); });
    EXPECT_EQ("Function name must not be empty string!", empty.getDesc());
    service.failing["CreateStub"] = E_FAIL;
    const auto failed = thrownBy<IllegalStateException>([&] { CTestStubController(connected(), "adc_read"); });
    EXPECT_EQ("Test stub controller creation failed!", failed.getDesc());
    EXPECT_NE(std::string::npos, failed.getData().find("objId: adc_read"));
    service.failing = {{"DestroyStub", E_FAIL}};
    EXPECT_EQ("Test stub controller destruction failed!",
              thrownBy<IllegalStateException>([&] { named.destroy(); }).getDesc());
}

TEST_F(CTestCaseControllerTest, VariableControllerChecksItsArguments)
{
    const auto noName = thrownBy<IllegalArgumentException>([&] { CTestVariableController(connected(), "", "int"); });
    EXPECT_EQ("Variable name must not be empty string!", noName.getDesc());
    const auto noType = thrownBy<IllegalArgumentException>([&] { CTestVariableController(connected(), "i", ""); });
    EXPECT_EQ("Variable type must not be empty string!", noType.getDesc());
    EXPECT_EQ(dataOf({{"variable", "i"}}), noType.getData());
    EXPECT_TRUE(testCalls().empty());

    CTestVariableController variable(connected(), "buf", "char[16]");
    EXPECT_EQ(100u, variable.getHandle());
    EXPECT_EQ("buf", variable.getName());
    service.failing = {{"CreateVariable", E_FAIL}, {"DestroyVariable", E_FAIL}};
    const auto created = thrownBy<IllegalStateException>([&] { CTestVariableController(connected(), "j", "int"); });
    EXPECT_EQ("Test variable controller creation failed!", created.getDesc());
    EXPECT_NE(std::string::npos, created.getData().find("objId: j"));
    EXPECT_EQ("Test variable controller destruction failed!",
              thrownBy<IllegalStateException>([&] { variable.destroy(); }).getDesc());
}

TEST(CTestCaseControllerStatic, StateNames)
{
    EXPECT_EQ("stateOffline", CTestCaseController::testState2str(1));
    EXPECT_EQ("statePaused", CTestCaseController::testState2str(8));
    EXPECT_EQ("9", CTestCaseController::testState2str(9));
    EXPECT_EQ("0", CTestCaseController::testState2str(0));
    EXPECT_EQ("stateStubActive", CTestCaseController::stubState2str(2));
    EXPECT_EQ("3", CTestCaseController::stubState2str(3));
}

TEST(CTestCaseControllerStatic, TextToNumber)
{
    const struct {
        const char* text;
        int64_t value;
    } cases[] = {
        {"0x10", 16},
        {"\\x41", 65},
        {"0x", 0},
        {"12abc", 12},
        {"", 0},
        {"-5", -5},
        {"  +7", 7},
        {"0xFFFFFFFF", 4294967295LL},
        {"0x-1", -1},
        {"0x0x10", 0},
        {"x10", 0},
        {"0X10", 0},
        {"9223372036854775807", INT64_MAX},
        {"9223372036854775808", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"-99999999999999999999", INT64_MIN},
        {"0x8000000000000000", INT64_MAX},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.value, CTestCaseController::s2i64(c.text)) << c.text;
    }
}

TEST_F(CTestCaseControllerTest, CallsAreLogged)
{
    const std::string log = tempFolder("testctl_log") + "/calls.py";
    connected()->initLogger("mgr", log, CLogger::PYTHON);
    {
        auto test = newTest("filter_step", "rv");
        test->createVariable("i", "int");
        test->createStub("adc_read");
        test->getStatus();
    }
    mgr.reset();
    std::ifstream in(log);
    std::stringstream text;
    text << in.rdbuf();
    const std::string script = text.str();
    // The construction, a status with its answer, and the destruction from the test down.
    const std::vector<std::string> lines = {
        "testCaseCtrl_filter_step = kestrix::CTestCaseController::CTestCaseController(connectionMgr, \"filter_step\", "
        "\"rv\")\n",
        "testStub_adc_read.CTestStubController(\"connectionMgr\", \"adc_read\");\n",
        "testCaseCtrl_filter_step.getStatus();\n# status == 2\n",
        "# Dtor: ~CTestCaseController\ntestCaseCtrl_filter_step.~CTestCaseController();\n"
        "testCaseCtrl_filter_step.destroy();\n",
        "testVariable.~CTestVariableController();\ntestVariable.destroy();\n",
        "testStub_adc_read.~CTestStubController();\ntestStub_adc_read.destroy();\n",
    };
    size_t from = 0;
    for (const std::string& line : lines) {
        const size_t at = script.find(line, from);
        EXPECT_NE(std::string::npos, at) << "missing or out of order: " << line << "\nin:\n" << script;
        if (at != std::string::npos) {
            from = at + line.size();
        }
    }
}

} // namespace
