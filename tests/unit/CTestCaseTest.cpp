// The test run against the scripted test service of the recording double: the order of its
// steps on the target, the serving of stubs, the script functions, clean-up after failures,
// and the judging of expected expressions.

#include <memory>
#include <string>
#include <vector>

#include "CTestCase.h"
#include "CTestCaseController.h"
#include "CTestSpecification.h"
#include "CTestStubController.h"
#include "Exceptions.h"
#include "ICustomFunctions.h"
#include "TestServiceSupport.h"

using namespace kestrix;

namespace {

typedef std::vector<std::string> Calls;
typedef std::shared_ptr<CTestSpecification> SpecPtr;

/// Script functions that note each call.
class RecordingFunctions : public ICustomFunctions {
public:
    int init(const std::string& name, const StrStrMap&) override { return note("init(map) " + name, 1); }
    int init(const std::string& name, const StrVector& params) override { return note("init " + name + join(params), 21); }
    int end(const std::string& name, const StrStrMap&) override { return note("end(map) " + name, 1); }
    int end(const std::string& name, const StrVector& params) override { return note("end " + name + join(params), 22); }
    int stub(const CTestStub& stub) override
    {
        return note("stub " + stub.getFunctionName() + " " + stub.getScriptFunction().getName(), 23);
    }

    Calls calls;

private:
    int note(const std::string& call, int result)
    {
        calls.push_back(call);
        return result;
    }
    static std::string join(const StrVector& params)
    {
        std::string text;
        for (const std::string& param : params) {
            text += " " + param;
        }
        return text;
    }
};

/// The calls without the reading of error texts.
Calls withoutErrorReads(const Calls& calls)
{
    Calls kept;
    for (const std::string& call : calls) {
        if (call.compare(0, 12, "GetLastError") != 0) {
            kept.push_back(call);
        }
    }
    return kept;
}

const char* const FILTER_TEST = "func: [filter_step, [], rv]\n"
                                "params: [100, 7]\n"
                                "locals:\n"
                                "  buf: 'char[4]'\n"
                                "init:\n"
                                "  g_filter.count: 0\n"
                                "  buf: '\"ab\"'\n"
                                "stubs:\n"
                                "- func: [adc_read, adcValue]\n"
                                "  params: [channel]\n"
                                "  assign:\n"
                                "    adcValue: 512\n"
                                "expect:\n"
                                "- rv == 100\n";

class CTestCaseTest : public TestServiceTest {
protected:
    void SetUp() override
    {
        TestServiceTest::SetUp();
        testCase = std::make_shared<CTestCase>(connected());
    }
    void TearDown() override
    {
        testCase.reset();
        TestServiceTest::TearDown();
    }

    std::shared_ptr<CTestCaseController> newController()
    {
        auto ctrl = testCase->createTestController("filter_step", "rv");
        forgetCalls();
        return ctrl;
    }

    /// The results of a run of `text`, or the description of its failure behind "failed: ".
    std::string runText(const std::string& text, StrVector& results, bool keepFailedTest = false)
    {
        try {
            testCase->runTest(CTestSpecification::parseTestSpec(text), results, keepFailedTest);
        } catch (const IException& e) {
            return "failed: " + e.getDesc();
        }
        return "ok";
    }

    std::shared_ptr<CTestCase> testCase;
    RecordingFunctions functions;
};

TEST_F(CTestCaseTest, RunGoesThroughItsStepsInOrder)
{
    service.stops = {stubStop("adc_read"), ended()};
    service.values["rv == 100"] = "1";
    StrVector results = {"earlier"};
    ASSERT_EQ("ok", runText(FILTER_TEST, results));
    EXPECT_EQ((StrVector{"earlier", ""}), results);
    EXPECT_EQ((Calls{
                  "CreateTest(filter_step)",
                  "CreateReturnValue(7, rv)",
                  "CreateParameter(7, 0, kestrix___position_param_0)",
                  "CreateParameter(7, 1, kestrix___position_param_1)",
                  "CreateVariable(buf, char[4])",
                  "CreateStub(adc_read)",
                  "CreateStubReturnValue(101, adcValue)",
                  "CreateStubParameter(101, 0, channel)",
                  "Control(1, 7)",
                  // values: locals first, then the parameters
                  "Modify(0, g_filter.count, 1024, 0)",
                  "Modify(0, buf[0], 1024, 'a')",
                  "Modify(0, buf[1], 1024, 'b')",
                  "Modify(0, buf[2], 1024, 0)",
                  "Modify(0, kestrix___position_param_0, 1024, 100)",
                  "Modify(0, kestrix___position_param_1, 1024, 7)",
                  // the first run stops on the stub, which gets its assignment
                  "Control(3, 7)",
                  "GetStatus(3, 7)",
                  "GetStatus(3, 7)",
                  "GetStatus(2, 0)",
                  "Modify(0, adcValue, 1024, 512)",
                  "GetStatus(3, 7)",
                  // the second one ends
                  "Control(3, 7)",
                  "GetStatus(3, 7)",
                  "GetStatus(3, 7)",
                  "GetStatus(3, 7)",
                  "GetStatus(3, 7)",
                  "Evaluate(1, rv == 100, 1024)",
                  "Control(2, 7)",
                  "DestroyVariable(100)",
                  "DestroyStub(101)",
                  "DestroyTest(7)",
              }),
              testCalls());
}

TEST_F(CTestCaseTest, RunsThatDoNotReachTheTarget)
{
    const struct {
        const char* text;
        const char* outcome;
    } cases[] = {
        {"run: false\nfunc: [filter_step]\nexpect: [rv == 1]\n", "ok"},
        {"func: [filter_step]\ntrace: {runMode: start}\ncoverage: {runMode: start, document: c.trd}\n",
         "failed: To many analyzers!\nOnly one of analyzers (trace, coverage, profiler)\nmay be specified in the same "
         "test specification!"},
    };
    for (const auto& c : cases) {
        StrVector results = {"kept"};
        EXPECT_EQ(c.outcome, runText(c.text, results));
        EXPECT_EQ(StrVector{"kept"}, results);
        EXPECT_TRUE(testCalls().empty());
    }
}

TEST_F(CTestCaseTest, FailureWhilePreparingDestroysTheTest)
{
    const struct {
        const char* failing;
        const char* desc;
    } cases[] = {
        {"CreateStub", "Test stub controller creation failed!"},
        {"Control:1", "Method 'init()' failed! "},
        {"CreateParameter", "Method 'createParameter()' failed! parameter: kestrix___position_param_0"},
    };
    for (const auto& c : cases) {
        service.failing = {{c.failing, E_FAIL}};
        forgetCalls();
        StrVector results;
        EXPECT_EQ(std::string("failed: ") + c.desc, runText(FILTER_TEST, results)) << c.failing;
        const Calls calls = withoutErrorReads(testCalls());
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ("DestroyTest(7)", calls.back()) << c.failing;
        EXPECT_EQ(0, std::count(calls.begin(), calls.end(), "Control(2, 7)")) << "nothing to clean yet";
    }
}

TEST_F(CTestCaseTest, FailureWhileRunningCleansUnlessKept)
{
    service.failing = {{"Modify:kestrix___position_param_1", E_FAIL}};
    StrVector results;
    EXPECT_EQ("failed: Method 'modify()' failed! Expression: 'kestrix___position_param_1 = 7'",
              runText(FILTER_TEST, results));
    Calls calls = withoutErrorReads(testCalls());
    EXPECT_EQ((Calls{"Control(2, 7)", "DestroyVariable(100)", "DestroyStub(101)", "DestroyTest(7)"}),
              Calls(calls.end() - 4, calls.end()));

    forgetCalls();
    EXPECT_EQ("failed: Method 'modify()' failed! Expression: 'kestrix___position_param_1 = 7'",
              runText(FILTER_TEST, results, true));
    calls = withoutErrorReads(testCalls());
    EXPECT_EQ(0, std::count(calls.begin(), calls.end(), "Control(2, 7)")) << "a kept test is not cleaned";
    EXPECT_EQ("DestroyTest(7)", calls.back()) << "the controller's end still destroys it";
}

TEST_F(CTestCaseTest, AbnormalEndSkipsTheEndFunction)
{
    testCase->setCallbackObject(&functions);
    service.stops = {Stop{OrbelTestFlags::stateUnexpectedStop, ""}};
    StrVector results;
    EXPECT_EQ("failed: Test didn't end normally. State = stateUnexpectedStop",
              runText("func: [filter_step]\ninitFunc: [calibrate, [2, x]]\nendFunc: [reset_calibration]\n"
                      "expect: [rv == 1]\n",
                      results));
    EXPECT_EQ(Calls{"init calibrate 2 x"}, functions.calls);
    EXPECT_TRUE(results.empty());
    const Calls calls = testCalls();
    EXPECT_EQ((Calls{"Control(2, 7)", "DestroyTest(7)"}), Calls(calls.end() - 2, calls.end()));
}

TEST_F(CTestCaseTest, ScriptFunctionsOfANormalRun)
{
    testCase->setCallbackObject(&functions);
    service.stops = {stubStop("adc_read"), stubStop("adc_read"), ended()};
    StrVector results;
    ASSERT_EQ("ok", runText("func: [filter_step]\ninitFunc: [calibrate, [2]]\nendFunc: [reset_calibration]\n"
                            "stubs:\n- func: [adc_read]\n  script: [on_adc]\n  assign: {x: 1}\n",
                            results));
    EXPECT_EQ((Calls{"init calibrate 2", "stub adc_read on_adc", "stub adc_read on_adc", "end reset_calibration"}),
              functions.calls);
    const Calls calls = testCalls();
    EXPECT_EQ(2, std::count(calls.begin(), calls.end(), "Modify(0, x, 1024, 1)")) << "a stub hit twice is served twice";
}

TEST_F(CTestCaseTest, ScriptFunctionsNeedTheCallbackObject)
{
    CTestFunction init;
    init.setName("calibrate");
    EXPECT_EQ("Custom functions object is not set. Can not call init function! See method setCallbackObject() in "
              "this class!",
              thrownBy<IllegalStateException>([&] { testCase->callInitFunction(init); }).getDesc());
    EXPECT_EQ("Custom functions object is not set. Can not call end function! See method setCallbackObject() in "
              "this class!",
              thrownBy<IllegalStateException>([&] { testCase->callEndFunction(init); }).getDesc());
    EXPECT_EQ(0, testCase->callInitFunction(CTestFunction())) << "no name, no call";
    EXPECT_EQ(0, testCase->callEndFunction(CTestFunction()));

    testCase->setCallbackObject(&functions);
    EXPECT_EQ(21, testCase->callInitFunction(init));
    EXPECT_EQ(22, testCase->callEndFunction(init));

    testCase->setCallbackObject(nullptr);
    auto spec = CTestSpecification::parseTestSpec("stubs:\n- func: [adc_read]\n  script: [on_adc]\n");
    auto ctrl = newController();
    ctrl->createStub("adc_read");
    service.stops = {stubStop("adc_read")};
    ctrl->run();
    EXPECT_EQ("Custom functions object is not set. Can not call stub function! See method setCallbackObject() in "
              "this class!",
              thrownBy<IllegalStateException>([&] { testCase->callStubs(spec->getStubs(), ctrl); }).getDesc());
}

TEST_F(CTestCaseTest, StubStopsFindTheirSpecification)
{
    auto spec = CTestSpecification::parseTestSpec("stubs:\n"
                                                   "- func: [adc_read]\n  assign: {first: 1}\n"
                                                   "- func: [adc_read]\n  assign: {second: 2}\n"
                                                   "- func: [adc_rea]\n  assign: {third: 3}\n");
    auto ctrl = newController();
    ctrl->createStub("adc_read");
    ctrl->createStub("uart_putc");
    service.stops = {stubStop("adc_read"), stubStop("uart_putc")};

    forgetCalls();
    testCase->callStubs(spec->getStubs(), ctrl);
    EXPECT_EQ(Calls{"GetStatus(3, 7)"}, testCalls()) << "a test that does not stand on a stub needs nothing more";

    ctrl->run();
    forgetCalls();
    testCase->callStubs(spec->getStubs(), ctrl);
    EXPECT_EQ((Calls{"GetStatus(3, 7)", "GetStatus(2, 0)", "Modify(0, first, 1024, 1)"}), testCalls())
        << "the first of two stubs of one function wins";

    ctrl->run();
    EXPECT_EQ("Stopped in state 'stStub', but stub specification not found. Stopped on function: uart_putc",
              thrownBy<IllegalStateException>([&] { testCase->callStubs(spec->getStubs(), ctrl); }).getDesc());
}

TEST_F(CTestCaseTest, StubsAreDeclaredWithTheirNames)
{
    auto spec = CTestSpecification::parseTestSpec("stubs:\n- func: [adc_read]\n  params: [channel, mode]\n"
                                                  "- func: [uart_putc, ret]\n");
    auto ctrl = newController();
    testCase->createStubs(spec->getStubs(), ctrl);
    EXPECT_EQ((Calls{"CreateStub(adc_read)", "CreateStubReturnValue(100, )", "CreateStubParameter(100, 0, channel)",
                     "CreateStubParameter(100, 1, mode)", "CreateStub(uart_putc)", "CreateStubReturnValue(101, ret)"}),
              testCalls());
}

TEST_F(CTestCaseTest, ValuesOfCharacterArraysAndOthers)
{
    const struct {
        const char* value;
        Calls writes;
    } cases[] = {
        {"\"ab\"", {"Modify(0, buf[0], 1024, 'a')", "Modify(0, buf[1], 1024, 'b')", "Modify(0, buf[2], 1024, 0)"}},
        {"\"\"", {"Modify(0, buf[0], 1024, 0)"}},
        {"\"'\"", {"Modify(0, buf[0], 1024, ''')", "Modify(0, buf[1], 1024, 0)"}},
        {"\"", {"Modify(0, buf, 1024, \")"}},
        {"\"ab", {"Modify(0, buf, 1024, \"ab)"}},
        {"42", {"Modify(0, buf, 1024, 42)"}},
        {"", {"Modify(0, buf, 1024, )"}},
    };
    auto ctrl = newController();
    for (const auto& c : cases) {
        forgetCalls();
        testCase->modifyWStr("buf", c.value, ctrl);
        EXPECT_EQ(c.writes, testCalls()) << c.value;
    }
}

TEST_F(CTestCaseTest, LocalsInOrderOfTheirNames)
{
    auto spec = CTestSpecification::parseTestSpec("locals: {z: int, a: 'char[2]', m: long}\n"
                                                  "init: {z: 1, 'a[0]': 2}\n");
    auto ctrl = newController();
    testCase->createLocals(spec, ctrl);
    testCase->setLocals(spec, ctrl);
    EXPECT_EQ((Calls{"CreateVariable(a, char[2])", "CreateVariable(m, long)", "CreateVariable(z, int)",
                     "Modify(0, z, 1024, 1)", "Modify(0, a[0], 1024, 2)"}),
              testCalls());
}

TEST_F(CTestCaseTest, VerifiedExpressionsShowTheirValues)
{
    service.values = {{"a == 3", "0"}, {"a", "5"}, {"0 == 1", "0"}, {"b == 1", "1"}, {"c", "0x1"}, {"d", "-1"},
                      {"e", "0x0"}, {"a + a == 3", "0"}, {"a == b", "0"}, {"a,x", "0x5"}, {"b,d", "9"},
                      {"s.v.w == 0", "false"}, {"s.v.w", "2"}, {"p->q == 1", "0"}, {"p", "0x20000000"},
                      {"q", "1"}, {"f('a') == 0x10", "0"}, {"f", "0x100"}};
    const struct {
        const char* expression;
        const char* shown;
        const char* bare;
    } cases[] = {
        {"a == 3", "a == 3\n    a = 5", "a = 5"},
        {"b == 1", "", ""},
        {"c", "", ""},
        {"d", "", ""},
        {"e", "e\n    e = 0x0", "e = 0x0"},
        {"0 == 1", "0 == 1\n", ""},
        {"a + a == 3", "a + a == 3\n    a = 5", "a = 5"},
        {"a == b @@ x d", "a == b\n    a = 0x5\n    b = 9", "a = 0x5\nb = 9"},
        {"a == 3@@", "a == 3\n    a = 5", "a = 5"},
        {"  a == 3  @@  ", "a == 3\n    a = 5", "a = 5"},
        {"s.v.w == 0", "s.v.w == 0\n    s.v.w = 2", "s.v.w = 2"},
        {"p->q == 1", "p->q == 1\n    p = 0x20000000\n    q = 1", "p = 0x20000000\nq = 1"},
        {"f('a') == 0x10", "f('a') == 0x10\n    f = 0x100", "f = 0x100"},
    };
    auto ctrl = newController();
    for (const auto& c : cases) {
        StrVector shown;
        StrVector bare = {"before"};
        testCase->verifyResults(StrVector{c.expression}, shown, true, ctrl);
        testCase->verifyResults(StrVector{c.expression}, bare, false, ctrl);
        EXPECT_EQ(StrVector{c.shown}, shown) << c.expression;
        EXPECT_EQ((StrVector{"before", c.bare}), bare) << c.expression;
    }
}

TEST_F(CTestCaseTest, AnIdentifierThatFailsShowsTheFailure)
{
    service.values = {{"0xAB == k", "0"}, {"k", "3"}};
    auto ctrl = newController();
    StrVector names;
    StrStrMap values;
    testCase->evalVars(names, StrVector{}, "0xAB == k", values, ctrl);
    EXPECT_EQ((StrVector{"AB", "k"}), names) << "the A of a hex constant follows a letter";
    EXPECT_EQ("3", values["k"]);
    EXPECT_EQ(0u, values["AB"].find("error:\n  desc: Method 'evaluate()' failed for expression: 'AB'\n"))
        << values["AB"];

    service.values = {{"never", "0"}};
    StrVector results;
    EXPECT_EQ("Method 'evaluate()' failed for expression: 'gone'",
              thrownBy<IllegalArgumentException>([&] { testCase->verifyResults({"never", "gone"}, results, true, ctrl); })
                  .getDesc());
    EXPECT_EQ(StrVector{"never\n    never = 0"}, results) << "what was judged stays";
}

TEST_F(CTestCaseTest, OperandsBetweenComparisons)
{
    service.values = {{"a->b", "1"}, {"a + 1", "2"}, {"b", "3"}, {"x", "4"}, {"a,h", "5"}, {"c,d", "6"},
                      {"c", "7"}, {"a", "8"}};
    const struct {
        const char* expression;
        StrVector formats;
        DWORD formatIndex;
        StrVector names;
    } cases[] = {
        {"a->b == 3", {}, 0, {"a->b"}},
        {"a + 1 < b", {}, 0, {"a + 1", "b"}},
        {"x", {}, 0, {"x"}},
        {"(a) && b || 1", {}, 0, {"b"}},
        {"a <= b", {}, 0, {"a", "b"}},
        {"a>b", {}, 0, {"a", "b"}},
        {"a != b && a == b", {}, 0, {"a", "b"}},
        {"nothing == b", {}, 0, {"b"}},
        {"a == c", {"h", "d"}, 0, {"a", "c"}},
        {"c == a", {"h", "d"}, 1, {"c", "a"}},
    };
    auto ctrl = newController();
    for (const auto& c : cases) {
        StrVector names;
        StrStrMap values;
        testCase->evalSubExpressions(names, c.formats, c.expression, values, c.formatIndex, ctrl);
        EXPECT_EQ(c.names, names) << c.expression;
        EXPECT_EQ(c.names.size(), values.size()) << c.expression << ": a failed operand has no entry";
    }
    StrVector names;
    StrStrMap values;
    testCase->evalSubExpressions(names, {"h", "d"}, "a == c", values, 0, ctrl);
    EXPECT_EQ("5", values["a"]);
    EXPECT_EQ("6", values["c"]);
}

TEST_F(CTestCaseTest, SpecificationTextIsParsedAndRun)
{
    service.values = {{"rv == 1", "1"}};
    StrVector results;
    testCase->tessarCpp("func: [filter_step, [], rv]\nexpect: [rv == 1]\n", results);
    EXPECT_EQ(StrVector{""}, results);
    EXPECT_THROW(testCase->tessarCpp("func: [filter_step\n", results), ParserException);
    EXPECT_THROW(testCase->runTest(nullptr, results), IllegalArgumentException);
}

TEST_F(CTestCaseTest, YamlTextOfOneObject)
{
    auto spec = CTestSpecification::parseTestSpec("func: [filter_step, [1], rv]\n");
    const std::string text = CTestCase::toYAMLString(spec->getFunctionUnderTest());
    EXPECT_EQ(0u, text.find("---")) << text;
    EXPECT_NE(std::string::npos, text.find("filter_step")) << text;
    EXPECT_EQ(text.size() - 4, text.rfind("...\n")) << text;
}

} // namespace
