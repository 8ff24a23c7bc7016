#include <gtest/gtest.h>

#include <algorithm>

#include "TargetFixture.h"
#include "target/ExecutionObserver.h"
#include "target/TargetError.h"

namespace quillon::target {
namespace {

/// Records what the core reports, in order.
class Recorder : public ExecutionObserver {
public:
    struct Write {
        uint32_t address;
        uint32_t size;
        uint64_t value;
        uint64_t cycle;
    };

    void onInstruction(uint32_t address, uint32_t size, uint64_t cycle) override
    {
        addresses.push_back(address);
        sizes.push_back(size);
        cycles.push_back(cycle);
    }
    void onWrite(uint32_t address, uint32_t size, uint64_t value, uint64_t cycle) override
    {
        writes.push_back({address, size, value, cycle});
    }

    std::vector<uint32_t> addresses;
    std::vector<uint32_t> sizes;
    std::vector<uint64_t> cycles;
    std::vector<Write> writes;
};

class TargetObserver : public TargetFixture {
protected:
    /// Every cycle from `first` to the target's count reported once, in order.
    void expectEveryCycleOnce(uint64_t first) const
    {
        ASSERT_EQ(recorder.cycles.size(), target->cycles() - first + 1);
        for (size_t i = 0; i < recorder.cycles.size(); ++i) {
            ASSERT_EQ(recorder.cycles[i], first + i) << "report " << i;
        }
    }

    Recorder recorder;
};

TEST_F(TargetObserver, SeesEveryInstructionOnceAcrossBreakpointStops)
{
    runToMain();
    const uint64_t start = target->cycles();
    target->addObserver(&recorder);
    target->setBreakpoint(sym("tick"));
    StopInfo stop = call("count_ticks", {3});
    int stops = 0;
    while (stop.reason == StopReason::Breakpoint) {
        ++stops;
        stop = target->runToStop();
    }
    ASSERT_EQ(stop.reason, StopReason::Returned) << stop.message;
    EXPECT_EQ(stops, 3);
    expectEveryCycleOnce(start + 1);
    EXPECT_EQ(std::count(recorder.addresses.begin(), recorder.addresses.end(), sym("tick")), 3)
        << "tick's first instruction ran once per call, though each call stopped before it";
    for (uint32_t size : recorder.sizes) {
        EXPECT_TRUE(size == 2 || size == 4) << size;
    }
}

TEST_F(TargetObserver, TheInstructionLimitDoesNotReportTheInstructionItStopsBefore)
{
    runToMain();
    const uint64_t start = target->cycles();
    target->addObserver(&recorder);
    RunOptions options;
    options.instructionLimit = 100;
    StopInfo stop = call("spin_forever", {}, options);
    ASSERT_EQ(stop.reason, StopReason::InstructionLimit) << stop.message;
    expectEveryCycleOnce(start + 1);
    EXPECT_EQ(recorder.cycles.size(), 100u);
}

TEST_F(TargetObserver, WritesComeAfterTheirInstructionWithTheStoredValue)
{
    runToMain();
    target->addObserver(&recorder, true);
    ASSERT_EQ(call("count_ticks", {2}).reason, StopReason::Returned);
    std::vector<Recorder::Write> ticks;
    for (const Recorder::Write& write : recorder.writes) {
        if (write.address == sym("g_ticks")) {
            ticks.push_back(write);
        }
    }
    ASSERT_EQ(ticks.size(), 2u);
    const uint32_t before = word("g_ticks") - 2;
    EXPECT_EQ(ticks[0].value, before + 1);
    EXPECT_EQ(ticks[1].value, before + 2);
    EXPECT_EQ(ticks[0].size, 4u);
    for (const Recorder::Write& write : ticks) {
        const auto at = std::find(recorder.cycles.begin(), recorder.cycles.end(), write.cycle);
        ASSERT_NE(at, recorder.cycles.end()) << "the writing instruction was reported before its write";
    }
}

TEST_F(TargetObserver, RemovedObserversHearNothingAndWritesStopWithTheirLastWatcher)
{
    runToMain();
    Recorder other;
    target->addObserver(&recorder, true);
    target->addObserver(&recorder, true); // twice is once
    target->addObserver(&other);
    target->removeObserver(&recorder);
    ASSERT_EQ(call("count_ticks", {1}).reason, StopReason::Returned);
    EXPECT_TRUE(recorder.cycles.empty());
    EXPECT_TRUE(recorder.writes.empty());
    EXPECT_FALSE(other.cycles.empty());
    EXPECT_TRUE(other.writes.empty()) << "it did not ask for writes";
    EXPECT_THROW(target->addObserver(nullptr), TargetError);
}

} // namespace
} // namespace quillon::target
