// The test service on its own firmware: calls by the procedure call standard, test locals, stubs, faults, the
// instruction limit, states and error texts.
#include "TestServiceFixture.h"

#include <functional>

namespace quillon::services {
namespace {

class TestServiceTest : public TestServiceFixture {
protected:
    void SetUp() override { load(testFirmware()); }
};

struct Call {
    const char* function;
    std::vector<std::string> parameters;
    const char* expected; ///< the return value's text
};

// 64-bit values go in register pairs and, as the fourth and fifth arguments of sum5, on the stack.
TEST_F(TestServiceTest, FunctionsReturnWhatTheirArgumentsMake)
{
    const Call calls[] = {
        {"add", {"40", "2"}, "42"},
        {"add", {"-7", "3"}, "-4"},
        {"mul_wide", {"3", "0x100000000"}, "12884901888"},           // 3 * 2^32
        {"mul_wide", {"-2", "0x7fffffff"}, "-4294967294"},
        {"sum5", {"1", "0x100000000", "3", "-5", "7"}, "4294967302"}, // 2^32 + 6
    };
    for (const Call& call : calls) {
        const std::uint32_t test = initialized(call.function, call.parameters);
        EXPECT_EQ(TestState::Ended, runOn(test)) << call.function << ": " << tests->problem(test);
        EXPECT_EQ(call.expected, tests->evaluate("rv")) << call.function;
        tests->destroyTest(test);
    }
}

TEST_F(TestServiceTest, StructuresGoByValueAndComeBack)
{
    const std::uint32_t box = initialized("make_box", {"2", "3", "4", "5"});
    ASSERT_EQ(TestState::Ended, runOn(box)) << tests->problem(box);
    EXPECT_EQ("1", tests->evaluate("rv.low.x == 2 && rv.low.y == 3 && rv.high.x == 6 && rv.high.y == 8"));
    EXPECT_EQ("1", tests->evaluate("rv.tag == 7"));
    tests->destroyTest(box);

    // (4 - 1) * (5 - 1) + 2: a 20-byte structure partly in registers, partly on the stack.
    const std::uint32_t area = tests->createTest("area");
    tests->createParameter(area, 0, "b");
    tests->createReturnValue(area, "rv");
    tests->init(area);
    for (const auto& [member, value] : {std::pair{"b.low.x", "1"}, {"b.low.y", "1"}, {"b.high.x", "4"},
                                        {"b.high.y", "5"}, {"b.tag", "2"}}) {
        tests->modify(member, value);
    }
    ASSERT_EQ(TestState::Ended, runOn(area)) << tests->problem(area);
    EXPECT_EQ("14", tests->evaluate("rv"));
    tests->destroyTest(area);

    const std::uint32_t mirror = tests->createTest("mirror");
    tests->createParameter(mirror, 0, "p");
    tests->createReturnValue(mirror, "m");
    tests->init(mirror);
    tests->modify("p.x", "11");
    tests->modify("p.y", "-3");
    ASSERT_EQ(TestState::Ended, runOn(mirror)) << tests->problem(mirror);
    EXPECT_EQ("1", tests->evaluate("m.x == -3 && m.y == 11"));
}

TEST_F(TestServiceTest, LocalsLiveInTargetMemoryThatTheFunctionWrites)
{
    const std::uint32_t test = tests->createTest("fill");
    tests->createReturnValue(test, "");
    tests->createParameter(test, 0, "out");
    tests->createParameter(test, 1, "n");
    tests->createParameter(test, 2, "value");
    const std::uint32_t buf = tests->createVariable("buf", "int32_t[4]");
    EXPECT_NE(0u, buf);
    tests->init(test);
    tests->modify("buf[3]", "-1");
    tests->modify("out", "&buf[0]");
    tests->modify("n", "3");
    tests->modify("value", "10");
    ASSERT_EQ(TestState::Ended, runOn(test)) << tests->problem(test);
    EXPECT_EQ("1", tests->evaluate("buf[0] == 10 && buf[1] == 11 && buf[2] == 12 && buf[3] == -1"));
    // The frame sits below the stack top of the vector table, in SRAM.
    const std::uint32_t address = std::stoul(tests->evaluate("(unsigned)&buf"));
    EXPECT_LT(address, target->readWord(0));
    EXPECT_GE(address, target->readWord(0) - 64);
}

TEST_F(TestServiceTest, AFaultEndsTheTestWithWhereItHappenedAndTheNextTestRuns)
{
    const std::uint32_t poke = initialized("poke", {"0", "5"}, "");
    EXPECT_EQ(TestState::UnexpectedStop, runOn(poke));
    const std::string problem = tests->problem(poke);
    EXPECT_NE(std::string::npos, problem.find("faulted")) << problem;
    EXPECT_NE(std::string::npos, problem.find("'poke'")) << problem;
    EXPECT_NE(std::string::npos, problem.find("testsvc.c:" + std::to_string(sourceLine("poke writes here"))))
        << problem;
    tests->clean(poke);
    tests->destroyTest(poke);

    const std::uint32_t add = initialized("add", {"1", "2"});
    EXPECT_EQ(TestState::Ended, runOn(add)) << tests->problem(add);
    EXPECT_EQ("3", tests->evaluate("rv"));
    EXPECT_EQ("", tests->problem(add));
}

TEST_F(TestServiceTest, AnEndlessLoopEndsAtTheInstructionLimit)
{
    const std::uint32_t spin = initialized("spin", {}, "");
    EXPECT_EQ(TestState::UnexpectedStop, runOn(spin));
    const std::string problem = tests->problem(spin);
    EXPECT_NE(std::string::npos, problem.find("did not end within 2000000 instructions")) << problem;
    EXPECT_NE(std::string::npos, problem.find("'spin'")) << problem;
    EXPECT_EQ("1", tests->evaluate("g_calls > 1000"));
}

TEST_F(TestServiceTest, AStubHitTwiceStopsTwiceAndItsBodyNeverRuns)
{
    const std::uint32_t test = tests->createTest("read_two");
    tests->createReturnValue(test, "rv");
    tests->createParameter(test, 0, "first");
    tests->createParameter(test, 1, "second");
    const std::uint32_t stub = tests->createStub("sensor");
    EXPECT_NE(0u, stub);
    tests->createStubReturnValue(stub, "srv");
    tests->createStubParameter(stub, 0, "ch");
    tests->init(test);
    tests->modify("first", "5");
    tests->modify("second", "7");
    tests->modify("g_calls", "0");

    ASSERT_EQ(TestState::Stub, runOn(test)) << tests->problem(test);
    EXPECT_EQ(stub, tests->activeStub());
    EXPECT_EQ("5", tests->evaluate("ch"));
    EXPECT_EQ("15", tests->modify("srv", "ch * 3"));
    EXPECT_EQ(TestState::Stub, tests->state(test)) << "serving a stub keeps it stopped";

    ASSERT_EQ(TestState::Stub, runOn(test)) << tests->problem(test);
    EXPECT_EQ("7", tests->evaluate("ch"));
    tests->modify("srv", "1");

    ASSERT_EQ(TestState::Ended, runOn(test)) << tests->problem(test);
    EXPECT_EQ("14", tests->evaluate("rv"));
    EXPECT_EQ("1", tests->evaluate("g_seen[1] == 0 && g_seen[3] == 0 && g_calls == 1"));
    EXPECT_EQ(TestError::Kind::IllegalArgument, errorOf([&] { tests->evaluate("ch"); }).kind())
        << "stub parameters exist only while stopped in the stub";
}

TEST_F(TestServiceTest, StubsTakeAndGive64BitValuesAndStructures)
{
    const std::uint32_t wide = tests->createTest("wide_twice");
    tests->createReturnValue(wide, "rv");
    tests->createParameter(wide, 0, "seed");
    const std::uint32_t source = tests->createStub("wide_source");
    tests->createStubReturnValue(source, "w");
    tests->createStubParameter(source, 0, "s");
    tests->init(wide);
    tests->modify("seed", "0x100000001");
    tests->modify("g_wide", "0");
    ASSERT_EQ(TestState::Stub, runOn(wide));
    EXPECT_EQ("4294967297", tests->evaluate("s"));
    tests->modify("w", "0x500000000");
    ASSERT_EQ(TestState::Stub, runOn(wide));
    EXPECT_EQ("8589934594", tests->evaluate("s"));
    tests->modify("w", "3");
    ASSERT_EQ(TestState::Ended, runOn(wide));
    EXPECT_EQ("21474836483", tests->evaluate("rv")); // 5 * 2^32 + 3
    EXPECT_EQ("0", tests->evaluate("g_wide"));
    tests->destroyTest(wide);

    // point_t comes back through the memory the caller passes.
    const std::uint32_t sum = tests->createTest("point_sum");
    tests->createReturnValue(sum, "rv");
    tests->createParameter(sum, 0, "k");
    const std::uint32_t point = tests->createStub("point_source");
    tests->createStubReturnValue(point, "p");
    tests->createStubParameter(point, 0, "kk");
    tests->init(sum);
    tests->modify("k", "3");
    ASSERT_EQ(TestState::Stub, runOn(sum));
    tests->modify("p.x", "kk + 1");
    tests->modify("p.y", "2");
    ASSERT_EQ(TestState::Ended, runOn(sum)) << tests->problem(sum);
    EXPECT_EQ("42", tests->evaluate("rv"));
}

TEST_F(TestServiceTest, StatesFollowTheCommands)
{
    load(testFirmware(), 4000000000ull);
    const std::uint32_t spin = tests->createTest("spin");
    tests->createReturnValue(spin, "");
    EXPECT_EQ(TestState::Offline, tests->state(spin));
    tests->init(spin);
    EXPECT_EQ(TestState::Initialized, tests->state(spin));
    tests->clean(spin);
    EXPECT_EQ(TestState::Offline, tests->state(spin));
    tests->init(spin);
    tests->modify("g_calls", "0");
    tests->run(spin);
    EXPECT_EQ(TestState::Running, tests->state(spin));
    EXPECT_EQ(TestError::Kind::IllegalState, errorOf([&] { tests->evaluate("g_calls"); }).kind());
    EXPECT_EQ(TestError::Kind::IllegalState, errorOf([&] { tests->run(spin); }).kind());
    tests->pause(spin);
    EXPECT_EQ(TestState::Paused, tests->state(spin));
    const std::string calls = tests->evaluate("g_calls");
    EXPECT_GT(std::stoll(calls), 0);
    tests->run(spin);
    EXPECT_EQ(TestState::Running, tests->state(spin));
    tests->abort(spin);
    EXPECT_EQ(TestState::Aborted, tests->state(spin));
    EXPECT_GE(std::stoll(tests->evaluate("g_calls")), std::stoll(calls));
    EXPECT_EQ(TestError::Kind::IllegalState, errorOf([&] { tests->abort(spin); }).kind());

    tests->clearAll();
    EXPECT_EQ(TestError::Kind::IllegalArgument, errorOf([&] { tests->state(spin); }).kind());
}

struct Failure {
    const char* what;
    std::function<void(TestService&, std::uint32_t)> call;
    TestError::Kind kind;
    const char* text; ///< a part of the message
};

TEST_F(TestServiceTest, FailuresSayWhatIsWrong)
{
    const Failure failures[] = {
        {"unknown function", [](TestService& s, std::uint32_t) { s.createTest("no_such_function"); },
         TestError::Kind::IllegalArgument, "unknown function 'no_such_function'"},
        {"unknown type", [](TestService& s, std::uint32_t) { s.createVariable("x", "struct nowhere"); },
         TestError::Kind::IllegalArgument, "unknown type 'struct nowhere' of test variable 'x'"},
        {"name twice", [](TestService& s, std::uint32_t) { s.createVariable("a", "int"); },
         TestError::Kind::IllegalArgument, "the name 'a' is used twice"},
        {"no such parameter", [](TestService& s, std::uint32_t t) { s.createParameter(t, 2, "c"); },
         TestError::Kind::IllegalArgument, "function 'add' has no parameter 2"},
        {"unknown stub", [](TestService& s, std::uint32_t) { s.createStub("nothing_here"); },
         TestError::Kind::IllegalArgument, "unknown function 'nothing_here'"},
        {"stub of the function under test", [](TestService& s, std::uint32_t) { s.createStub("add"); },
         TestError::Kind::IllegalArgument, "under test"},
        {"run before init", [](TestService& s, std::uint32_t t) { s.run(t); }, TestError::Kind::IllegalState,
         "cannot run the test of 'add' in state stateOffline"},
        {"evaluate without a test", [](TestService& s, std::uint32_t) { s.evaluate("a"); },
         TestError::Kind::IllegalState, "no test is initialized"},
        {"unknown handle", [](TestService& s, std::uint32_t) { s.state(999); }, TestError::Kind::IllegalArgument,
         "no test has the handle 999"},
        {"unknown variable", [](TestService& s, std::uint32_t) { s.destroyVariable(999); },
         TestError::Kind::IllegalArgument, "no test variable has the handle 999"},
        {"no stub stop", [](TestService& s, std::uint32_t) { s.activeStub(); }, TestError::Kind::IllegalState,
         "not stopped in a stub"},
    };
    const std::uint32_t add = tests->createTest("add");
    tests->createParameter(add, 0, "a");
    for (const Failure& failure : failures) {
        const TestError error = errorOf([&] { failure.call(*tests, add); });
        EXPECT_EQ(failure.kind, error.kind()) << failure.what;
        EXPECT_NE(std::string::npos, std::string(error.what()).find(failure.text))
            << failure.what << ": " << error.what();
    }
}

TEST_F(TestServiceTest, DeclarationsAndExpressionsNeedTheRightState)
{
    const std::uint32_t fill = tests->createTest("fill");
    EXPECT_EQ(TestError::Kind::IllegalArgument, errorOf([&] { tests->createReturnValue(fill, "r"); }).kind())
        << "fill returns nothing";
    tests->init(fill);
    const TestError late = errorOf([&] { tests->createVariable("v", "int"); });
    EXPECT_EQ(TestError::Kind::IllegalState, late.kind());
    EXPECT_NE(std::string::npos, std::string(late.what()).find("declarations come before init")) << late.what();
    const TestError unknown = errorOf([&] { tests->evaluate("nothing + 1"); });
    EXPECT_EQ(TestError::Kind::IllegalArgument, unknown.kind());
    EXPECT_NE(std::string::npos, std::string(unknown.what()).find("nothing")) << unknown.what();
    EXPECT_EQ("26", tests->modify("g_calls", "20 + 6"));
    EXPECT_EQ("0x1a", tests->evaluate("g_calls,h")) << "a display format behind a comma";
}

TEST_F(TestServiceTest, ATestOfAProgramDownloadedAgainIsOnlyDestroyed)
{
    const std::uint32_t add = initialized("add", {"1", "2"});
    const std::uint32_t fill = tests->createTest("fill");
    programs = Loader(*target).download({testFirmware()});
    for (const auto& call : std::vector<std::function<void()>>{[&] { tests->run(add); }, [&] { tests->init(fill); },
                                                               [&] { tests->evaluate("g_calls"); },
                                                               [&] { tests->createVariable("v", "int"); }}) {
        const TestError error = errorOf(call);
        EXPECT_EQ(TestError::Kind::IllegalState, error.kind());
        EXPECT_NE(std::string::npos, std::string(error.what()).find("downloaded again")) << error.what();
    }
    tests->destroyTest(add);
    tests->destroyTest(fill);
    const std::uint32_t again = initialized("add", {"1", "2"});
    EXPECT_EQ(TestState::Ended, runOn(again));
    EXPECT_EQ("3", tests->evaluate("rv"));
}

} // namespace
} // namespace quillon::services
