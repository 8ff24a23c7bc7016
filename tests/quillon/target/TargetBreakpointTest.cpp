#include <gtest/gtest.h>

#include "TargetFixture.h"
#include "target/Hex.h"
#include "target/TargetError.h"

namespace quillon::target {
namespace {

class TargetBreakpoint : public TargetFixture {
protected:
    /// Calls count_ticks(n) with the given breakpoint on tick and returns g_ticks at each stop. tick() stops
    /// before it counts, so the k-th call of tick shows k - 1.
    std::vector<uint32_t> ticksAtStops(uint32_t n, BreakpointOptions options)
    {
        runToMain();
        target->setBreakpoint(sym("tick"), std::move(options));
        std::vector<uint32_t> ticks;
        StopInfo stop = call("count_ticks", {n});
        while (stop.reason == StopReason::Breakpoint && ticks.size() <= n) {
            EXPECT_EQ(stop.pc, sym("tick"));
            EXPECT_EQ(stop.address, sym("tick"));
            ticks.push_back(word("g_ticks"));
            stop = target->runToStop();
        }
        EXPECT_EQ(stop.reason, StopReason::Returned) << stop.message;
        EXPECT_EQ(target->readRegister("r0"), n) << "every tick ran once";
        return ticks;
    }

    std::function<bool()> ticksOdd()
    {
        return [this] { return word("g_ticks") % 2 == 1; };
    }
};

TEST_F(TargetBreakpoint, HitCountsAndConditions)
{
    struct Case {
        const char* what;
        uint32_t hitCount;
        bool oddTicksOnly;
        std::vector<uint32_t> ticks;
    };
    const Case cases[] = {
        {"every hit", 0, false, {0, 1, 2, 3, 4, 5, 6, 7}},
        {"hit count 1", 1, false, {0, 1, 2, 3, 4, 5, 6, 7}},
        {"every third hit", 3, false, {2, 5}},
        {"condition", 0, true, {1, 3, 5, 7}},
        {"every second hit where the condition holds", 2, true, {3, 7}},
    };
    for (const Case& c : cases) {
        makeTarget("cortex-m3");
        BreakpointOptions options;
        options.hitCount = c.hitCount;
        if (c.oddTicksOnly) {
            options.condition = ticksOdd();
        }
        EXPECT_EQ(ticksAtStops(8, options), c.ticks) << c.what;
        EXPECT_EQ(target->breakpoint(sym("tick"))->hits(), c.oddTicksOnly ? 4u : 8u) << c.what;
    }
}

TEST_F(TargetBreakpoint, DisabledAndRemovedBreakpointsDoNotStop)
{
    runToMain();
    uint32_t tick = sym("tick");
    target->setBreakpoint(tick);
    ASSERT_TRUE(target->enableBreakpoint(tick, false));
    EXPECT_FALSE(target->breakpoint(tick)->enabled());
    EXPECT_EQ(call("count_ticks", {3}).reason, StopReason::Returned);
    EXPECT_EQ(target->breakpoint(tick)->hits(), 0u);

    ASSERT_TRUE(target->enableBreakpoint(tick, true));
    EXPECT_EQ(call("count_ticks", {3}).reason, StopReason::Breakpoint);

    EXPECT_TRUE(target->removeBreakpoint(tick));
    EXPECT_FALSE(target->removeBreakpoint(tick));
    EXPECT_FALSE(target->enableBreakpoint(tick, true));
    EXPECT_FALSE(target->breakpoint(tick).has_value());
    EXPECT_EQ(target->runToStop().reason, StopReason::Returned);

    // tick's code is translated by now; a breakpoint set afterwards must still stop there.
    target->setBreakpoint(tick);
    StopInfo stop = call("count_ticks", {2});
    EXPECT_EQ(stop.reason, StopReason::Breakpoint);
    EXPECT_EQ(stop.pc, tick);
    target->setBreakpoint(sym("weighted_sum"));
    EXPECT_EQ(target->breakpoints().size(), 2u);
    target->removeAllBreakpoints();
    EXPECT_TRUE(target->breakpoints().empty());
    EXPECT_EQ(call("count_ticks", {3}).reason, StopReason::Returned);
}

TEST_F(TargetBreakpoint, SettingAgainReplacesOptionsAndHits)
{
    runToMain();
    target->setBreakpoint(sym("tick"));
    ASSERT_EQ(call("count_ticks", {4}).reason, StopReason::Breakpoint);
    BreakpointOptions third;
    third.hitCount = 3;
    target->setBreakpoint(sym("tick"), third);
    EXPECT_EQ(target->breakpoint(sym("tick"))->hits(), 0u);
    EXPECT_EQ(target->runToStop().reason, StopReason::Breakpoint);
    EXPECT_EQ(word("g_ticks"), 3u) << "the resumed tick is passed over, the next three count";
}

TEST_F(TargetBreakpoint, ConditionReadsRegistersOfTheStoppedCore)
{
    // filter_bench(n) passes (i * 37) & 1023 to filter_step: the sample 111 is the fourth.
    runToMain();
    BreakpointOptions options;
    options.condition = [this] { return target->readRegister("r0") == 111; };
    target->setBreakpoint(sym("filter_step"), options);
    StopInfo stop = call("filter_bench", {10});
    EXPECT_EQ(stop.reason, StopReason::Breakpoint);
    EXPECT_EQ(target->readRegister("r0"), 111u);
    EXPECT_EQ(target->readMemory(sym("g_filter") + 20, 1)[0], 3) << "three samples filtered before";
}

TEST_F(TargetBreakpoint, BreakpointAtTheStartStopsUnlessTheRunResumesFromIt)
{
    target->setBreakpoint(sym("main") | 1u); // the Thumb bit of a function symbol is ignored
    StopInfo stop = target->runToStop();
    EXPECT_EQ(stop.reason, StopReason::Breakpoint);
    EXPECT_EQ(stop.pc, sym("main"));
    EXPECT_EQ(target->breakpoint(sym("main"))->hits(), 1u);

    target->setBreakpoint(sym("weighted_sum"));
    uint64_t cycles = target->cycles();
    EXPECT_EQ(call("weighted_sum", {1, 1, 1, 1}).reason, StopReason::Breakpoint);
    EXPECT_EQ(target->cycles(), cycles) << "stopped before the first instruction";
    EXPECT_EQ(target->runToStop().reason, StopReason::Returned);
    EXPECT_EQ(target->breakpoint(sym("weighted_sum"))->hits(), 1u);
}

TEST_F(TargetBreakpoint, BreakpointWhereAnotherStopLandedStillHits)
{
    // An instruction limit that ends right before tick: the breakpoint there has not been passed yet.
    runToMain();
    prepareCall("count_ticks", {3});
    RunOptions toTick;
    toTick.until = {sym("tick")};
    uint64_t cycles = target->cycles();
    ASSERT_EQ(target->runToStop(toTick).reason, StopReason::RunUntilReached);
    uint64_t instructionsToTick = target->cycles() - cycles;

    makeTarget("cortex-m3");
    runToMain();
    target->setBreakpoint(sym("tick"));
    RunOptions limit;
    limit.instructionLimit = instructionsToTick;
    StopInfo stop = call("count_ticks", {3}, limit);
    ASSERT_EQ(stop.reason, StopReason::InstructionLimit);
    ASSERT_EQ(stop.pc, sym("tick"));
    stop = target->runToStop();
    EXPECT_EQ(stop.reason, StopReason::Breakpoint);
    EXPECT_EQ(stop.pc, sym("tick"));
    EXPECT_EQ(word("g_ticks"), 0u) << "the first call of tick";
}

TEST_F(TargetBreakpoint, FailingConditionStopsAndSaysWhy)
{
    runToMain();
    BreakpointOptions options;
    options.condition = []() -> bool { throw std::runtime_error("no symbol 'x' in the current scope"); };
    target->setBreakpoint(sym("tick"), options);
    StopInfo stop = call("count_ticks", {3});
    EXPECT_EQ(stop.reason, StopReason::Breakpoint);
    EXPECT_EQ(stop.message, "breakpoint at " + hex32(sym("tick")) + ": condition failed: no symbol 'x' in the current scope");
}

} // namespace
} // namespace quillon::target
