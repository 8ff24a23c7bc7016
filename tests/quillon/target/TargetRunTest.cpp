#include <gtest/gtest.h>

#include <thread>

#include "TargetFixture.h"
#include "target/TargetError.h"

namespace quillon::target {
namespace {

using namespace std::chrono_literals;

class TargetRun : public TargetFixture {
protected:
    /// Starts spin_forever with the run handed to the run thread at once.
    void startSpinning()
    {
        runToMain();
        target->setHostBudget(0us);
        prepareCall("spin_forever", {});
        target->run();
        ASSERT_TRUE(target->isRunning());
    }
};

TEST_F(TargetRun, CallReturnsToTheReturnAddress)
{
    runToMain();
    uint32_t sp = target->readWord(0);
    StopInfo stop = call("weighted_sum", {1, 2, 3, 4});
    EXPECT_EQ(stop.reason, StopReason::Returned);
    EXPECT_EQ(stop.pc, returnAddress);
    EXPECT_EQ(target->readRegister("r0"), 1u + 2 * 2 + 3 * 3 + 4 * 4);
    EXPECT_EQ(target->readRegister("sp"), sp) << "the callee popped what it pushed";
    EXPECT_EQ(call("weighted_sum", {uint32_t(-10), 0, 0, 1}).reason, StopReason::Returned);
    EXPECT_EQ(static_cast<int32_t>(target->readRegister("r0")), -6);

    prepareCall("weighted_sum", {1, 2, 3, 4});
    target->writeRegister("lr", returnAddress); // without the Thumb bit
    EXPECT_EQ(target->runToStop().reason, StopReason::Returned);

    target->setReturnAddress(std::nullopt);
    stop = call("weighted_sum", {1, 2, 3, 4});
    EXPECT_EQ(stop.fault, FaultKind::UnmappedFetch);
    EXPECT_EQ(stop.pc, returnAddress);
}

TEST_F(TargetRun, StepsExecuteSingleInstructions)
{
    runToMain();
    prepareCall("weighted_sum", {1, 2, 3, 4});
    target->setBreakpoint(sym("weighted_sum")); // the step starts on it and passes over it
    uint64_t cycles = target->cycles();
    uint32_t pc = target->pc();
    for (int i = 1; i <= 3; ++i) {
        target->step();
        StopInfo stop = target->stopInfo();
        EXPECT_EQ(stop.reason, StopReason::StepDone);
        EXPECT_EQ(target->cycles(), cycles + i);
        EXPECT_GT(stop.pc, pc);
        EXPECT_LE(stop.pc, pc + 4) << "straight code: the next instruction";
        pc = stop.pc;
    }
    target->step(5);
    EXPECT_EQ(target->cycles(), cycles + 8);
    EXPECT_TRUE(inFunction(target->pc(), "weighted_sum"));
    EXPECT_THROW(target->step(0), TargetError);
    EXPECT_EQ(target->breakpoint(sym("weighted_sum"))->hits(), 0u);

    // A step onto the return address ends the call.
    StopInfo stop;
    for (int i = 0; i < 100 && (stop = (target->step(), target->stopInfo())).reason == StopReason::StepDone; ++i) {
    }
    EXPECT_EQ(stop.reason, StopReason::Returned);
    EXPECT_EQ(target->readRegister("r0"), 30u);
}

TEST_F(TargetRun, RunUntilAddresses)
{
    runToMain();
    RunOptions options;
    options.until = {sym("spin_forever"), sym("tick") | 1u};
    StopInfo stop = target->runToStop(options); // main loops over count_ticks, which calls tick
    EXPECT_EQ(stop.reason, StopReason::RunUntilReached);
    EXPECT_EQ(stop.pc, sym("tick"));
    EXPECT_EQ(stop.address, sym("tick"));
    uint32_t ticks = word("g_ticks");

    // From the address itself, the run goes once round the loop to it.
    stop = target->runToStop(options);
    EXPECT_EQ(stop.reason, StopReason::RunUntilReached);
    EXPECT_EQ(stop.pc, sym("tick"));
    EXPECT_EQ(word("g_ticks"), ticks + 1);

    // The until-addresses belong to their run only.
    options.until.clear();
    options.instructionLimit = 5000;
    EXPECT_EQ(target->runToStop(options).reason, StopReason::InstructionLimit);
}

TEST_F(TargetRun, InstructionLimitStopsAtExactCount)
{
    runToMain();
    for (uint64_t limit : {1u, 17u, 100000u, 300000u}) { // beyond one slice of the caller's budget too
        prepareCall("spin_forever", {});
        uint64_t cycles = target->cycles();
        RunOptions options;
        options.instructionLimit = limit;
        StopInfo stop = target->runToStop(options);
        EXPECT_EQ(stop.reason, StopReason::InstructionLimit);
        EXPECT_EQ(target->cycles() - cycles, limit);
        EXPECT_TRUE(inFunction(stop.pc, "spin_forever"));
    }
    RunOptions generous;
    generous.instructionLimit = 1000000;
    EXPECT_EQ(call("count_ticks", {3}, generous).reason, StopReason::Returned) << "a limit not reached";
}

TEST_F(TargetRun, CyclesAreDeterministic)
{
    // Two targets, the same runs: the same counts, places and memory, from reset and across calls.
    auto runs = [this] {
        makeTarget("cortex-m3");
        std::vector<uint64_t> figures;
        runToMain();
        figures.push_back(target->cycles());
        call("count_ticks", {100});
        figures.push_back(target->cycles());
        RunOptions options;
        options.instructionLimit = 12345;
        call("spin_forever", {}, options);
        figures.push_back(target->pc());
        figures.push_back(word("g_ticks"));
        call("filter_bench", {50});
        figures.push_back(target->cycles());
        figures.push_back(target->readRegister("r0"));
        return figures;
    };
    std::vector<uint64_t> first = runs();
    EXPECT_EQ(runs(), first);
}

TEST_F(TargetRun, StopFromAnotherThread)
{
    startSpinning();
    std::thread stopper([this] {
        std::this_thread::sleep_for(20ms);
        target->stop();
    });
    EXPECT_TRUE(target->waitUntilStopped(10s));
    stopper.join();
    StopInfo stop = target->stopInfo();
    EXPECT_EQ(stop.reason, StopReason::StopRequest);
    EXPECT_TRUE(inFunction(stop.pc, "spin_forever"));
    EXPECT_EQ(target->readRegister("pc"), stop.pc);
    EXPECT_GT(word("g_ticks"), 0u);
}

TEST_F(TargetRun, StatusWhileRunningNeverBlocks)
{
    startSpinning();
    uint64_t cycles = target->cycles();
    uint32_t ticks = word("g_ticks"); // memory reads go on while the core runs
    for (int i = 0; i < 1000 && (target->cycles() == cycles || word("g_ticks") == ticks); ++i) {
        std::this_thread::sleep_for(5ms); // however busy the host is
    }
    EXPECT_TRUE(target->isRunning());
    EXPECT_GT(target->cycles(), cycles);
    EXPECT_NE(word("g_ticks"), ticks);
    EXPECT_EQ(target->stopInfo().reason, StopReason::RunUntilReached) << "the last stop, still";
    EXPECT_FALSE(target->waitUntilStopped(1ms));
    for (auto access : std::vector<std::function<void()>>{
             [&] { target->readRegister("r0"); },
             [&] { target->writeMemory(sym("g_ticks"), std::vector<uint8_t>{0}); },
             [&] { target->run(); },
             [&] { target->reset(); },
             [&] { target->setBreakpoint(sym("tick")); },
         }) {
        try {
            access();
            ADD_FAILURE() << "allowed while running";
        } catch (const TargetError& e) {
            EXPECT_EQ(e.kind(), TargetError::Kind::Running);
        }
    }
    target.reset(); // destroying a running target stops it
}

TEST_F(TargetRun, ShortRunsEndOnTheCallersThreadLongOnesOnTheRunThread)
{
    runToMain();
    for (auto [budget, ticks] : {std::pair{10000000us, 1000u}, std::pair{0us, 200000u}}) {
        const uint32_t before = word("g_ticks"); // count_ticks returns the running total
        target->setHostBudget(budget);
        prepareCall("count_ticks", {ticks});
        target->run();
        EXPECT_EQ(target->isRunning(), budget == 0us) << ticks;
        EXPECT_TRUE(target->waitUntilStopped(60s));
        EXPECT_EQ(target->stopInfo().reason, StopReason::Returned);
        EXPECT_EQ(target->readRegister("r0"), before + ticks);
    }
}

} // namespace
} // namespace quillon::target
