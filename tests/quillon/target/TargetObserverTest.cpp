#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

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

/// Reads PC and SP in every callback, as a profiler does.
class RegisterReader : public ExecutionObserver {
public:
    explicit RegisterReader(Target& target) : m_target(target) {}

    void onRunStart(uint64_t cycle) override
    {
        starts.push_back({read(Register::PC), cycle});
        runStartSps.push_back(read(Register::SP));
    }
    void onInstruction(uint32_t address, uint32_t, uint64_t cycle) override
    {
        addresses.push_back(address);
        cycles.push_back(cycle);
        pcsAfter.push_back(read(Register::PC));
        nexts.push_back(m_target.nextAddress());
    }
    void onWrite(uint32_t, uint32_t, uint64_t, uint64_t cycle) override { writeCycles.push_back(cycle); }

    struct Start {
        uint32_t pc;
        uint64_t cycle;
    };
    std::vector<Start> starts;
    std::vector<uint32_t> runStartSps;
    std::vector<uint32_t> addresses;
    std::vector<uint32_t> pcsAfter;
    std::vector<uint64_t> cycles;
    std::vector<std::optional<uint32_t>> nexts;
    std::vector<uint64_t> writeCycles;
    int failures = 0;

private:
    uint32_t read(Register reg)
    {
        try {
            return m_target.readRegister(reg) & ~1u;
        } catch (...) {
            ++failures;
            return 0;
        }
    }

    Target& m_target;
};

TEST_F(TargetObserver, CallbacksSeeTheRegistersAfterTheInstructionAndRunsTellWhereTheyStart)
{
    runToMain();
    RegisterReader reader(*target);
    target->addObserver(&reader);
    target->setBreakpoint(sym("tick"));
    prepareCall("count_ticks", {2});
    const uint32_t sp = target->readRegister(Register::SP);
    StopInfo stop = target->runToStop();
    int runs = 1;
    while (stop.reason == StopReason::Breakpoint) {
        stop = target->runToStop();
        ++runs;
    }
    ASSERT_EQ(stop.reason, StopReason::Returned) << stop.message;
    EXPECT_EQ(reader.failures, 0) << "a register read failed in a callback";
    ASSERT_EQ(reader.starts.size(), static_cast<size_t>(runs));
    EXPECT_EQ(reader.starts[0].pc, sym("count_ticks"));
    EXPECT_EQ(reader.runStartSps[0], sp);
    for (size_t run = 1; run < reader.starts.size(); ++run) {
        EXPECT_EQ(reader.starts[run].pc, sym("tick")) << "run " << run << " resumes at the breakpoint";
    }
    ASSERT_EQ(reader.addresses.size(), reader.pcsAfter.size());
    for (size_t i = 0; i + 1 < reader.addresses.size(); ++i) {
        ASSERT_EQ(reader.pcsAfter[i], reader.addresses[i + 1]) << "report " << i;
    }
    EXPECT_EQ(reader.pcsAfter.back(), returnAddress) << "the last instruction returned to the caller";
    for (size_t i = 0; i < reader.nexts.size(); ++i) {
        ASSERT_EQ(reader.nexts[i], reader.pcsAfter[i]) << "report " << i;
    }
    EXPECT_FALSE(target->nextAddress()) << "outside a callback";
}

TEST_F(TargetObserver, TheNextAddressIsUnknownOnlyWhileAWritingInstructionStillRuns)
{
    runToMain();
    RegisterReader reader(*target);
    target->addObserver(&reader, true);
    ASSERT_EQ(call("count_ticks", {3}).reason, StopReason::Returned);
    ASSERT_FALSE(reader.writeCycles.empty());
    size_t unknown = 0;
    for (size_t i = 0; i < reader.nexts.size(); ++i) {
        const bool writes = std::count(reader.writeCycles.begin(), reader.writeCycles.end(), reader.cycles[i]) > 0;
        if (!reader.nexts[i]) {
            ++unknown;
            EXPECT_TRUE(writes) << "report " << i << " has no next address but wrote nothing";
        } else {
            const uint32_t next = i + 1 < reader.addresses.size() ? reader.addresses[i + 1] : returnAddress;
            EXPECT_EQ(*reader.nexts[i], next) << "report " << i;
        }
    }
    EXPECT_GT(unknown, 0u);
}

} // namespace
} // namespace quillon::target
