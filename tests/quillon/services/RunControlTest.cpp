#include <thread>

#include "ServiceFixture.h"

namespace quillon::services {
namespace {

using RunControlTest = ServiceFixture;

TEST_F(RunControlTest, RunUntilFunctionStopsAfterThePrologueWithTheDataCopied)
{
    runToMain();
    CpuStatus status = service->status();
    EXPECT_FALSE(status.running);
    EXPECT_EQ(status.pc, addressOfLine("g_depth = 0;"));
    EXPECT_EQ(function(), "main");
    // the startup code copied .data from flash: g_total starts as 5
    EXPECT_EQ(word(elfSymbol("g_total")), 5u);
    EXPECT_GT(status.cycles, 0u);
    EXPECT_DOUBLE_EQ(status.seconds, static_cast<double>(status.cycles) / 16000000.0);
}

TEST_F(RunControlTest, LineStepsFollowTheSourceAndStepOverRunsWholeCalls)
{
    runToMain();
    service->stepLine();
    EXPECT_EQ(line(), lineOf("g_total = (int)g_table[g_depth];"));
    EXPECT_EQ(service->status().cause, StopCause::Step);
    service->stepOverLine();
    EXPECT_EQ(line(), lineOf("depth(3);"));
    service->stepOverLine(); // the recursion runs to its end
    EXPECT_EQ(line(), lineOf("tick();"));
    EXPECT_EQ(word(elfSymbol("g_depth")), 3u);
    EXPECT_EQ(service->status().cause, StopCause::Step);
}

TEST_F(RunControlTest, StepLineEntersCalleesAfterTheirPrologue)
{
    runToMain();
    service->runUntilLine("services_test.c", lineOf("tick();"));
    ASSERT_EQ(stopped().cause, StopCause::UntilReached);

    struct Expected {
        const char* function;
        const char* line;
    };
    const Expected path[] = {
        {"tick", "g_counter++;"},
        {"tick", "g_total = twice(g_counter);"},
        {"twice", "int y = add(x, x);"},
        {"add", "int sum = a + b;"},
        {"add", "return sum;"},
    };
    for (const Expected& step : path) {
        service->stepLine();
        EXPECT_EQ(function(), step.function) << step.line;
        EXPECT_EQ(line(), lineOf(step.line)) << step.line;
        EXPECT_EQ(service->status().cause, StopCause::Step);
    }
}

TEST_F(RunControlTest, RunUntilReturnStopsInTheCallerWithTheResult)
{
    service->runUntilFunction("add");
    ASSERT_EQ(stopped().cause, StopCause::UntilReached);
    service->runUntilReturn();
    CpuStatus status = stopped();
    EXPECT_EQ(status.cause, StopCause::UntilReached) << status.message;
    EXPECT_EQ(function(), "twice");
    EXPECT_EQ(line(), lineOf("int y = add(x, x);")); // in the middle of the calling line
    // tick incremented g_counter to 1 and twice(1) calls add(1, 1)
    EXPECT_EQ(reg("r0"), 2u);
}

TEST_F(RunControlTest, RunUntilReturnLeavesOneLevelOfARecursion)
{
    service->runUntilLine("services_test.c", lineOf("return g_depth;"));
    ASSERT_EQ(stopped().cause, StopCause::UntilReached);
    std::uint32_t deepest = reg("sp");
    service->runUntilReturn();
    CpuStatus status = stopped();
    EXPECT_EQ(status.cause, StopCause::UntilReached);
    EXPECT_EQ(function(), "depth"); // the caller is depth(1)
    EXPECT_EQ(reg("r0"), 3u);
    EXPECT_GT(reg("sp"), deepest);
}

TEST_F(RunControlTest, StepOverLineOfARecursiveCallStaysInTheSameFrame)
{
    service->setBreakpoint(BreakpointLocation::sourceLine("services_test.c", lineOf("return depth(n - 1);")));
    service->run();
    ASSERT_EQ(stopped().cause, StopCause::Breakpoint);
    service->deleteAllBreakpoints();
    std::uint32_t sp = reg("sp");
    EXPECT_EQ(word(elfSymbol("g_depth")), 1u);
    service->stepOverLine();
    EXPECT_EQ(service->status().cause, StopCause::Step);
    EXPECT_EQ(reg("sp"), sp); // not the inner frames' return to the same address
    EXPECT_EQ(word(elfSymbol("g_depth")), 3u);
    EXPECT_EQ(function(), "depth");
    EXPECT_NE(line(), lineOf("return depth(n - 1);"));
}

TEST_F(RunControlTest, InstructionStepsCountOneCycleAndStepOverSkipsCalls)
{
    service->runUntilFunction("tick");
    ASSERT_EQ(stopped().cause, StopCause::UntilReached);
    CpuStatus before = service->status();
    service->stepInstruction();
    CpuStatus after = service->status();
    EXPECT_EQ(after.cycles, before.cycles + 1);
    EXPECT_TRUE(after.pc == before.pc + 2 || after.pc == before.pc + 4);
    EXPECT_EQ(after.cause, StopCause::Step);

    // Over calls, tick's instructions alone until it returns to main; twice has run by then.
    bool enteredCallee = false;
    for (int i = 0; i < 40 && function() == "tick"; ++i) {
        service->stepOverInstruction();
        enteredCallee = enteredCallee || function() == "twice" || function() == "add";
    }
    EXPECT_FALSE(enteredCallee);
    EXPECT_EQ(function(), "main");
    EXPECT_EQ(word(elfSymbol("g_total")), 2u);
}

TEST_F(RunControlTest, InstructionStepsEnterCalls)
{
    service->runUntilFunction("tick");
    ASSERT_EQ(stopped().cause, StopCause::UntilReached);
    for (int i = 0; i < 40 && function() == "tick"; ++i) {
        service->stepInstruction();
    }
    EXPECT_EQ(function(), "twice");
}

TEST_F(RunControlTest, AFaultOfTheCoreIsAStopWithItsReason)
{
    runToMain();
    service->runUntilLine("services_test.c", lineOf("tick();"));
    ASSERT_EQ(stopped().cause, StopCause::UntilReached);
    setWord(elfSymbol("g_counter"), 999); // the next tick makes 1000: write_flash writes to flash
    service->run();
    CpuStatus status = stopped();
    EXPECT_EQ(status.cause, StopCause::Fault);
    EXPECT_EQ(status.fault, target::FaultKind::WriteDenied);
    EXPECT_EQ(status.address, 0x1000u);
    EXPECT_NE(status.message.find("0x00001000"), std::string::npos) << status.message;
    EXPECT_NE(status.message.find("flash"), std::string::npos) << status.message;
    EXPECT_EQ(function(), "write_flash");
}

TEST_F(RunControlTest, StopFromAnotherThreadEndsAnEndlessRunAndStatusNeverWaits)
{
    runToMain();
    setWord(elfSymbol("g_counter"), 2000); // far from 1000: the loop never faults
    service->run();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    CpuStatus running = service->status();
    EXPECT_TRUE(running.running);
    std::thread stopper([&] { service->stop(); });
    stopper.join();
    CpuStatus status = stopped();
    EXPECT_EQ(status.cause, StopCause::StopRequest);
    EXPECT_GT(word(elfSymbol("g_counter")), 2000u);
}

TEST_F(RunControlTest, CommandsThatNeedAStoppedCoreRefuseWhileItRuns)
{
    runToMain();
    setWord(elfSymbol("g_counter"), 2000);
    service->run();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ServiceError step = errorOf([&] { service->stepLine(); });
    EXPECT_EQ(step.kind(), ServiceError::Kind::Running);
    EXPECT_EQ(errorOf([&] { service->run(); }).kind(), ServiceError::Kind::Running);
    EXPECT_EQ(errorOf([&] { service->readRegister("pc"); }).kind(), ServiceError::Kind::CannotAccess);
    // memory is read while the core runs
    EXPECT_EQ(service->readMemory(0, 0, 4, 1).size(), 4u);
    service->stop();
    EXPECT_EQ(stopped().cause, StopCause::StopRequest);
}

TEST_F(RunControlTest, ResetAndExecutionPoint)
{
    runToMain();
    service->setExecutionPoint(0, elfSymbol("tick"));
    EXPECT_EQ(service->status().pc, elfSymbol("tick"));
    EXPECT_EQ(errorOf([&] { service->setExecutionPoint(2, 0x100); }).kind(), ServiceError::Kind::NotFound);
    service->reset();
    CpuStatus status = service->status();
    EXPECT_EQ(status.cause, StopCause::Reset);
    EXPECT_EQ(status.pc, elfSymbol("Reset_Handler"));
    EXPECT_EQ(status.cycles, 0u);
    service->resetAndRun();
    service->stop();
    EXPECT_NE(stopped().cause, StopCause::Reset);
}

TEST_F(RunControlTest, RunUntilUnknownPlacesFailsBeforeRunning)
{
    ServiceError function = errorOf([&] { service->runUntilFunction("nope"); });
    EXPECT_EQ(function.kind(), ServiceError::Kind::NotFound);
    EXPECT_STREQ(function.what(), "no function 'nope'");
    ServiceError line = errorOf([&] { service->runUntilLine("services_test.c", 3); });
    EXPECT_EQ(line.kind(), ServiceError::Kind::NotFound);
    EXPECT_STREQ(line.what(), "no code at line 3 of 'services_test.c'");
    EXPECT_EQ(service->status().cause, StopCause::Reset);
}

} // namespace
} // namespace quillon::services
