// Observers that take batches, checked against one that takes every instruction of the same runs: the batches,
// one after the other, must be exactly the instructions that ran, with their cycles.
#include <gtest/gtest.h>

#include <vector>

#include "TargetFixture.h"
#include "target/ExecutionObserver.h"

namespace quillon::target {
namespace {

struct Ran {
    uint32_t address;
    uint32_t size;
    uint64_t cycle;
};

class OneByOne : public ExecutionObserver {
public:
    void onInstruction(uint32_t address, uint32_t size, uint64_t cycle) override
    {
        ran.push_back({address, size, cycle});
    }
    std::vector<Ran> ran;
};

class Batches : public ExecutionObserver {
public:
    bool takesBatches() const override { return true; }
    void onRunStart(uint64_t) override { ++runs; }
    void onInstruction(uint32_t, uint32_t, uint64_t) override { ++singleCalls; }
    void onInstructions(const Executed* instructions, size_t count, uint64_t cycle) override
    {
        ++batches;
        largest = std::max(largest, count);
        empty += count == 0 ? 1 : 0;
        for (size_t i = 0; i < count; ++i) {
            ran.push_back({instructions[i].address, instructions[i].size, cycle + i});
        }
    }
    std::vector<Ran> ran;
    int runs = 0;
    int batches = 0;
    int singleCalls = 0;
    int empty = 0;
    size_t largest = 0;
};

class TargetBatchObserver : public TargetFixture {
protected:
    void SetUp() override
    {
        TargetFixture::SetUp();
        runToMain();
        start = target->cycles();
        target->addObserver(&oneByOne);
        target->addObserver(&batches);
    }

    /// Both observers heard of the same instructions at the same cycles, and each cycle since `start` once.
    void expectTheSameInstructions() const
    {
        ASSERT_EQ(batches.ran.size(), oneByOne.ran.size());
        ASSERT_EQ(batches.ran.size(), target->cycles() - start);
        for (size_t i = 0; i < batches.ran.size(); ++i) {
            ASSERT_EQ(batches.ran[i].address, oneByOne.ran[i].address) << "instruction " << i;
            ASSERT_EQ(batches.ran[i].size, oneByOne.ran[i].size) << "instruction " << i;
            ASSERT_EQ(batches.ran[i].cycle, start + 1 + i) << "instruction " << i;
        }
        EXPECT_EQ(batches.singleCalls, 0) << "an observer of batches pays nothing per instruction";
        EXPECT_EQ(batches.empty, 0);
    }

    uint64_t start = 0;
    OneByOne oneByOne;
    Batches batches;
};

TEST_F(TargetBatchObserver, ALongLoopComesInFullBatchesAndEndsWithItsRun)
{
    ASSERT_EQ(call("count_ticks", {2000}).reason, StopReason::Returned);
    expectTheSameInstructions();
    EXPECT_EQ(batches.runs, 1);
    EXPECT_GT(batches.ran.size(), 512u * 4);
    EXPECT_EQ(batches.largest, 512u) << "a batch goes out when it is full";
}

TEST_F(TargetBatchObserver, StopsBeforeAnInstructionLeaveItOutUntilItRuns)
{
    target->setBreakpoint(sym("tick") + 2); // inside tick, behind its first instruction
    StopInfo stop = call("count_ticks", {2});
    ASSERT_EQ(stop.reason, StopReason::Breakpoint) << stop.message;
    expectTheSameInstructions();
    EXPECT_EQ(batches.ran.back().address, sym("tick")) << "the instruction at the breakpoint did not run";

    stop = target->runToStop();
    ASSERT_EQ(stop.reason, StopReason::Breakpoint) << stop.message;
    target->removeBreakpoint(sym("tick") + 2);
    stop = target->runToStop();
    ASSERT_EQ(stop.reason, StopReason::Returned) << stop.message;
    expectTheSameInstructions();
    EXPECT_EQ(batches.runs, 3);

    RunOptions limit;
    limit.instructionLimit = 101;
    start = target->cycles();
    batches.ran.clear();
    oneByOne.ran.clear();
    ASSERT_EQ(call("spin_forever", {}, limit).reason, StopReason::InstructionLimit);
    expectTheSameInstructions();
    EXPECT_EQ(batches.ran.size(), 101u);
    for (int i = 0; i < 7; ++i) {
        target->step(1);
        target->waitUntilStopped();
    }
    expectTheSameInstructions();
    EXPECT_EQ(batches.ran.size(), 108u);
}

TEST_F(TargetBatchObserver, ARemovedBatchObserverHearsNothingMore)
{
    target->removeObserver(&batches);
    ASSERT_EQ(call("count_ticks", {1}).reason, StopReason::Returned);
    EXPECT_TRUE(batches.ran.empty());
    EXPECT_EQ(batches.runs, 0);
    EXPECT_FALSE(oneByOne.ran.empty());
}

} // namespace
} // namespace quillon::target
