#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "ProfilerFixture.h"

namespace quillon::services {
namespace {

using Statistic = ProfilerService::Statistic;
using Event = ProfilerService::Event;
using Kind = ServiceError::Kind;

constexpr std::uint32_t kEntry = ProfilerRecording::kEntryValue;

class Profiler : public ProfilerFixture {};

TEST_F(Profiler, ALoopTakesTimeLinearInItsIterationsAndTheSameOnEveryRun)
{
    std::vector<std::int64_t> times;
    for (unsigned n : {2u, 4u, 6u, 8u, 4u}) {
        recordFunctions({"loop"});
        const std::uint64_t cycles = runTest("loop", {std::to_string(n)});
        const Statistic loop = codeStatistic("loop");
        EXPECT_EQ(loop.hits, 1u) << n;
        EXPECT_EQ(loop.total, static_cast<std::int64_t>(cycles)) << "the whole test run is the call, n = " << n;
        EXPECT_EQ(loop.min, loop.total);
        EXPECT_EQ(loop.max, loop.total);
        times.push_back(loop.total);
    }
    const std::int64_t perTwo = times[1] - times[0];
    EXPECT_GT(perTwo, 0);
    EXPECT_EQ(times[2] - times[1], perTwo);
    EXPECT_EQ(times[3] - times[2], perTwo);
    EXPECT_EQ(times[4], times[1]) << "a repeated run takes as long";
}

TEST_F(Profiler, NanosecondsAreCyclesOverTheClock)
{
    profiler->startConfiguration(ProfilerService::TimeBase::Nanoseconds);
    profiler->addFunction("loop");
    profiler->start();
    const std::uint64_t cycles = runTest("loop", {"7"});
    const Statistic loop = codeStatistic("loop");
    EXPECT_EQ(loop.total, static_cast<std::int64_t>(cycles * 1000000000u / kClockHz));
    const std::vector<Event> events = historyOf("loop");
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1].time - events[0].time, static_cast<std::uint64_t>(loop.total));

    struct Case {
        std::uint64_t cycles;
        std::uint64_t clock;
        std::int64_t nanoseconds;
    };
    for (const Case& c : {Case{3, 12000000, 250}, Case{1, 3, 333333333}, Case{12000001, 12000000, 1000000083},
                          Case{std::uint64_t{1} << 40, 1000000000, std::int64_t{1} << 40}}) {
        EXPECT_EQ(ProfilerService::timeOf(c.cycles, ProfilerService::TimeBase::Nanoseconds, c.clock), c.nanoseconds)
            << c.cycles << " at " << c.clock;
        EXPECT_EQ(ProfilerService::timeOf(c.cycles, ProfilerService::TimeBase::Cycles, c.clock),
                  static_cast<std::int64_t>(c.cycles));
    }
}

TEST_F(Profiler, NestedCallsHoldTheTimesOfTheirCallees)
{
    recordFunctions({"outer", "middle", "leaf"});
    const std::uint64_t cycles = runTest("outer", {"1"});
    const Statistic outer = codeStatistic("outer");
    const Statistic middle = codeStatistic("middle");
    const Statistic leaf = codeStatistic("leaf");
    EXPECT_EQ(outer.hits, 1u);
    EXPECT_EQ(middle.hits, 1u);
    EXPECT_EQ(leaf.hits, 2u);
    EXPECT_EQ(outer.total, static_cast<std::int64_t>(cycles));
    EXPECT_GT(outer.total, middle.total);
    EXPECT_GT(middle.total, leaf.total);

    // The history nests: outer, middle, leaf in and out twice, middle out, outer out.
    std::vector<std::pair<std::string, bool>> order;
    for (const Event& event : profiler->history({}, 0, 100)) {
        order.emplace_back(profiler->area(event.handle).name, event.value == kEntry);
    }
    const std::vector<std::pair<std::string, bool>> nested = {
        {"outer", true}, {"middle", true}, {"leaf", true}, {"leaf", false}, {"leaf", true},
        {"leaf", false}, {"middle", false}, {"outer", false}};
    EXPECT_EQ(order, nested);
}

TEST_F(Profiler, RecursiveCallsAreHitsButTheTotalCountsTheOutermostCall)
{
    recordFunctions({"depth"});
    const std::uint64_t cycles = runTest("depth", {"3"});
    const Statistic depth = codeStatistic("depth");
    EXPECT_EQ(depth.hits, 4u) << "depth(3), depth(2), depth(1), depth(0)";
    EXPECT_EQ(depth.total, static_cast<std::int64_t>(cycles));
    EXPECT_EQ(depth.max, depth.total);
    EXPECT_LT(depth.min, depth.max);

    // Entries come in with rising times, returns go out in reverse order, each call shorter than its caller.
    const std::vector<Event> events = historyOf("depth");
    ASSERT_EQ(events.size(), 8u);
    std::vector<std::uint64_t> durations;
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(events[i].value, kEntry);
        EXPECT_EQ(events[4 + i].value, 0u);
        durations.push_back(events[7 - i].time - events[i].time);
    }
    EXPECT_TRUE(std::is_sorted(durations.rbegin(), durations.rend()));
    EXPECT_EQ(static_cast<std::int64_t>(durations.back()), depth.min);
}

TEST_F(Profiler, ATailCallEndsTogetherWithItsCaller)
{
    recordFunctions({"tails", "tail", "leaf"});
    const std::uint64_t cycles = runTest("tails", {"3"});
    const Statistic tails = codeStatistic("tails");
    const Statistic tail = codeStatistic("tail");
    const Statistic leaf = codeStatistic("leaf");
    EXPECT_EQ(tails.hits, 1u);
    EXPECT_EQ(tails.total, static_cast<std::int64_t>(cycles));
    EXPECT_EQ(tail.hits, 3u) << "each call of tail ends when leaf returns for it";
    EXPECT_EQ(leaf.hits, 3u);
    EXPECT_EQ(tail.min, tail.max);
    EXPECT_GT(tail.min, leaf.max) << "tail's time holds leaf's";
    EXPECT_LT(tail.total, tails.total);
}

TEST_F(Profiler, TheFirmwaresTailCallIsABranch)
{
    // leaf, reached from tail, returns straight to tails: that is what the test above relies on.
    target->setBreakpoint(functionAddress("leaf"));
    const std::uint32_t test = tests->createTest("tails");
    tests->createParameter(test, 0, "n");
    tests->init(test);
    tests->modify("n", "1");
    tests->run(test);
    ASSERT_TRUE(tests->waitWhileRunning(test, std::chrono::seconds(20)));
    ASSERT_EQ(target->pc(), functionAddress("leaf"));
    EXPECT_EQ(debug->functionAt(target->readRegister(target::Register::LR) & ~1u), "tails");
}

TEST_F(Profiler, AStubIsAHitWithoutTime)
{
    recordFunctions({"poll", "sensor"});
    const std::uint64_t cycles = runTest("poll", {"3"}, {"sensor"});
    const Statistic poll = codeStatistic("poll");
    const Statistic sensor = codeStatistic("sensor");
    EXPECT_EQ(poll.hits, 1u);
    EXPECT_EQ(poll.total, static_cast<std::int64_t>(cycles));
    EXPECT_EQ(sensor.hits, 3u) << "each stop in the stub is a call that returns at once";
    EXPECT_EQ(sensor.total, 0);
    EXPECT_EQ(sensor.max, 0);
}

TEST_F(Profiler, AVariableHasStatisticsPerWrittenValue)
{
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    profiler->addVariable("g_state");
    profiler->start();
    const std::uint64_t cycles = runTest("walk", {"7"}); // writes 0 1 2 0 1 2 0

    const std::vector<Event> writes = historyOf("g_state");
    ASSERT_EQ(writes.size(), 7u);
    const std::uint64_t period = writes[1].time - writes[0].time;
    for (std::size_t i = 0; i < writes.size(); ++i) {
        EXPECT_EQ(writes[i].value, i % 3) << i;
        if (i > 0) {
            EXPECT_EQ(writes[i].time - writes[i - 1].time, period) << "the loop writes at a steady pace";
        }
    }
    const std::int64_t p = static_cast<std::int64_t>(period);
    const std::int64_t last = static_cast<std::int64_t>(cycles - writes.back().time);
    const Statistic one = valueStatistic("g_state", 1);
    const Statistic two = valueStatistic("g_state", 2);
    const Statistic zero = valueStatistic("g_state", 0);
    EXPECT_EQ(statisticsOf("g_state").size(), 3u);
    EXPECT_EQ(one.hits, 2u);
    EXPECT_EQ(one.total, 2 * p);
    EXPECT_EQ(one.min, p);
    EXPECT_EQ(one.max, p);
    EXPECT_EQ(two.hits, 2u);
    EXPECT_EQ(two.total, 2 * p);
    EXPECT_EQ(zero.hits, 3u);
    EXPECT_EQ(zero.total, 2 * p + last) << "the value written last holds until the end of the run";
    EXPECT_EQ(zero.min, std::min(p, last));
    EXPECT_EQ(zero.max, std::max(p, last));

    EXPECT_TRUE(profiler->stop());
    const Statistic afterStop = valueStatistic("g_state", 0);
    EXPECT_EQ(afterStop.total, zero.total) << "the core stood still since";
    EXPECT_EQ(afterStop.hits, zero.hits);
}

TEST_F(Profiler, APartialWriteGivesTheValueOfTheWholeVariable)
{
    const std::uint32_t word = variableAddress("g_word");
    const std::uint8_t bytes[] = {0x44, 0x33, 0x22, 0x11};
    target->writeMemory(word, bytes, sizeof bytes);
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    profiler->addVariable("g_word");
    profiler->addRegion("byte1", word + 1, 1);
    profiler->addRegion("byte2", word + 2, 1);
    profiler->start();
    runTest("poke_byte", {"0xAB"});
    EXPECT_EQ(valueStatistic("g_word", 0x1122AB44).hits, 1u);
    EXPECT_EQ(statisticsOf("g_word").size(), 1u);
    EXPECT_EQ(valueStatistic("byte1", 0xAB).hits, 1u);
    EXPECT_TRUE(statisticsOf("byte2").empty()) << "the write left byte 2 alone";
}

TEST_F(Profiler, ARegionOverAVariableMeasuresTheSame)
{
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    profiler->addVariable("g_state");
    const ProfilerArea region = profiler->addRegion("state", variableAddress("g_state"), 4);
    profiler->start();
    runTest("walk", {"5"});
    const std::vector<Statistic> variable = statisticsOf("g_state");
    const std::vector<Statistic> state = statisticsOf("state");
    ASSERT_EQ(variable.size(), state.size());
    for (std::size_t i = 0; i < state.size(); ++i) {
        EXPECT_EQ(state[i].handle, region.handle);
        EXPECT_EQ(state[i].value, variable[i].value);
        EXPECT_EQ(state[i].hits, variable[i].hits);
        EXPECT_EQ(state[i].total, variable[i].total);
    }
}

TEST_F(Profiler, ARoutineEndsAtAReturnOrOnceItsExitRan)
{
    const std::uint32_t entry = functionAddress("staged");
    const std::uint32_t exit = symbolAddress(DebugService::Labels, "staged_mid");
    const auto function = debug->findSymbol(DebugService::Functions, "staged");
    ASSERT_TRUE(function);
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    profiler->addFunction("staged");
    profiler->addRoutine("whole", entry, function->size, {});
    profiler->addRoutine("first half", entry, function->size, {exit});
    profiler->start();

    // Called by hand, to the exit's breakpoint, one step over it, and on to the return.
    const std::uint64_t start = target->cycles();
    target->writeRegister(target::Register::PC, entry);
    target->writeRegister(target::Register::LR, TestService::returnAddress | 1u);
    target->setReturnAddress(TestService::returnAddress);
    target->setBreakpoint(exit);
    ASSERT_EQ(target->runToStop().reason, target::StopReason::Breakpoint);
    target->step();
    target->waitUntilStopped();
    const std::uint64_t throughExit = target->cycles() - start;
    ASSERT_EQ(target->runToStop().reason, target::StopReason::Returned);
    const std::uint64_t whole = target->cycles() - start;
    target->setReturnAddress(std::nullopt);

    EXPECT_EQ(codeStatistic("staged").total, static_cast<std::int64_t>(whole));
    EXPECT_EQ(codeStatistic("whole").total, static_cast<std::int64_t>(whole));
    EXPECT_EQ(codeStatistic("first half").hits, 1u);
    EXPECT_EQ(codeStatistic("first half").total, static_cast<std::int64_t>(throughExit));
    EXPECT_LT(throughExit, whole);
}

TEST_F(Profiler, AStartingAddressDelaysTheRecordingUntilControlGetsThere)
{
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles, functionAddress("leaf"));
    profiler->addFunction("caller");
    profiler->addFunction("leaf");
    profiler->start();
    EXPECT_EQ(profiler->status().state, ProfilerService::State::Waiting);
    runTest("caller", {"3"});
    EXPECT_EQ(profiler->status().state, ProfilerService::State::Active);
    EXPECT_EQ(codeStatistic("caller").hits, 0u) << "caller began before the recording";
    EXPECT_EQ(codeStatistic("leaf").hits, 3u);
    const std::vector<Event> events = profiler->history({}, 0, 100);
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.front().time, 0u) << "time starts where the recording starts";
    EXPECT_EQ(events.front().value, kEntry);
}

TEST_F(Profiler, AStartingAddressRightAfterAWriteIsReachedWhileWritesAreWatched)
{
    // staged_mid follows a store: with a data area, where control goes after it is known one instruction later.
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles, symbolAddress(DebugService::Labels, "staged_mid"));
    profiler->addVariable("g_state");
    profiler->addFunction("leaf");
    profiler->start();
    runTest("caller", {"2"});
    EXPECT_EQ(profiler->status().state, ProfilerService::State::Waiting);
    runTest("staged", {"1"});
    EXPECT_EQ(profiler->status().state, ProfilerService::State::Active);
    runTest("caller", {"3"});
    runTest("walk", {"2"});
    EXPECT_EQ(codeStatistic("leaf").hits, 3u) << "the calls before the starting address do not count";
    EXPECT_EQ(statisticsOf("g_state").size(), 2u);
}

TEST_F(Profiler, ANewStartDropsTheOldRecording)
{
    recordFunctions({"caller", "leaf"});
    runTest("caller", {"2"});
    EXPECT_EQ(codeStatistic("leaf").hits, 2u);
    profiler->start();
    EXPECT_TRUE(profiler->statistics({}).empty());
    EXPECT_TRUE(profiler->history({}, 0, 10).empty());
    runTest("caller", {"1"});
    EXPECT_EQ(codeStatistic("leaf").hits, 1u);
}

TEST_F(Profiler, HistoryReadsInBlocksAddUpToTheWhole)
{
    recordFunctions({"caller", "leaf"});
    runTest("caller", {"6"});
    const std::vector<Event> whole = profiler->history({}, 0, 1000);
    ASSERT_EQ(whole.size(), 14u) << "caller and six leaves, in and out";
    std::vector<Event> blocks;
    for (std::size_t first = 0;; first += 3) {
        const std::vector<Event> block = profiler->history({}, first, 3);
        blocks.insert(blocks.end(), block.begin(), block.end());
        if (block.size() < 3) {
            break;
        }
    }
    ASSERT_EQ(blocks.size(), whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(blocks[i].time, whole[i].time);
        EXPECT_EQ(blocks[i].handle, whole[i].handle);
    }
    ProfilerService::Selection leafReturns;
    leafReturns.handle = profiler->area("leaf").handle;
    leafReturns.value = 0;
    EXPECT_EQ(profiler->history(leafReturns, 0, 100).size(), 6u);
    EXPECT_EQ(profiler->history(leafReturns, 4, 100).size(), 2u);
    leafReturns.task = 0;
    EXPECT_EQ(profiler->statistics(leafReturns).size(), 1u) << "task 0 is the whole target";
}

TEST_F(Profiler, StatusFollowsTheConfigurationAndTheRecording)
{
    EXPECT_EQ(profiler->status().state, ProfilerService::State::Unconfigured);
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    EXPECT_EQ(profiler->status().state, ProfilerService::State::Idle);
    profiler->addFunction("leaf");
    profiler->start();
    ProfilerService::Status status = profiler->status();
    EXPECT_EQ(status.state, ProfilerService::State::Active);
    EXPECT_FALSE(status.isLoading) << "the core stands";
    runTest("caller", {"2"});
    status = profiler->status();
    EXPECT_EQ(status.analyzedEvents, 2u) << "two returns";
    EXPECT_EQ(status.recordedEvents, 4u) << "two entries and two returns";
    EXPECT_TRUE(profiler->stop());
    EXPECT_EQ(profiler->status().state, ProfilerService::State::Idle);
    EXPECT_FALSE(profiler->stop()) << "nothing to stop";
    EXPECT_EQ(codeStatistic("leaf").hits, 2u) << "the figures stay after the stop";
}

TEST_F(Profiler, BadAreasAndOperationsOutOfOrderAreRefusedWithWhatIsWrong)
{
    EXPECT_EQ(profilerErrorOf([&] { profiler->addFunction("leaf"); }).kind(), Kind::Failed);
    EXPECT_EQ(profilerErrorOf([&] { profiler->start(); }).kind(), Kind::Failed);
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    EXPECT_EQ(profilerErrorOf([&] { profiler->start(); }).kind(), Kind::Failed) << "no area";
    profiler->addFunction("leaf");

    struct Case {
        const char* what;
        std::function<void()> add;
        Kind kind;
        const char* named;
    };
    const std::uint32_t staged = functionAddress("staged");
    const std::vector<Case> cases = {
        {"unknown function", [&] { profiler->addFunction("no_such"); }, Kind::NotFound, "no_such"},
        {"unknown variable", [&] { profiler->addVariable("g_none"); }, Kind::NotFound, "g_none"},
        {"same name", [&] { profiler->addFunction("leaf"); }, Kind::InvalidArgument, "leaf"},
        {"wide variable", [&] { profiler->addVariable("g_wide"); }, Kind::InvalidArgument, "8 bytes"},
        {"structure", [&] { profiler->addVariable("g_pair"); }, Kind::InvalidArgument, "g_pair"},
        {"empty region", [&] { profiler->addRegion("r", 0x20000000, 0); }, Kind::InvalidArgument, "0 bytes"},
        {"wide region", [&] { profiler->addRegion("r", 0x20000000, 5); }, Kind::InvalidArgument, "5 bytes"},
        {"unmapped region", [&] { profiler->addRegion("r", 0x60000000, 4); }, Kind::InvalidArgument, "0x60000000"},
        {"nameless region", [&] { profiler->addRegion("", 0x20000000, 4); }, Kind::InvalidArgument, "name"},
        {"long name", [&] { profiler->addRegion(std::string(256, 'n'), 0x20000000, 4); }, Kind::InvalidArgument,
         "256"},
        {"empty routine", [&] { profiler->addRoutine("r", staged, 0, {}); }, Kind::InvalidArgument, "size is 0"},
        {"exit outside", [&] { profiler->addRoutine("r", staged, 4, {staged + 4}); }, Kind::InvalidArgument,
         "not in its code"},
    };
    for (const Case& c : cases) {
        const ServiceError error = profilerErrorOf(c.add);
        EXPECT_EQ(error.kind(), c.kind) << c.what;
        EXPECT_NE(std::string(error.what()).find(c.named), std::string::npos) << c.what << ": " << error.what();
    }
    EXPECT_EQ(profiler->areaCount(), 1u) << "nothing was added";

    profiler->start();
    EXPECT_EQ(profilerErrorOf([&] { profiler->addFunction("caller"); }).kind(), Kind::Failed) << "recording";
    ProfilerService::Selection task;
    task.task = 2;
    EXPECT_EQ(profilerErrorOf([&] { profiler->statistics(task); }).kind(), Kind::NotAvailable);
    EXPECT_EQ(profilerErrorOf([&] { profiler->history(task, 0, 1); }).kind(), Kind::NotAvailable);
    ProfilerService::Selection unknown;
    unknown.handle = 9;
    EXPECT_EQ(profilerErrorOf([&] { profiler->statistics(unknown); }).kind(), Kind::NotFound);
    EXPECT_EQ(profilerErrorOf([&] { profiler->area(0); }).kind(), Kind::NotFound);
    EXPECT_EQ(profilerErrorOf([&] { profiler->area("caller"); }).kind(), Kind::NotFound);
    EXPECT_EQ(profilerErrorOf([&] { profiler->areaAt(0x20000000); }).kind(), Kind::NotFound);
}

TEST_F(Profiler, AreasAreFoundByHandleNameAndAddress)
{
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    const ProfilerArea leaf = profiler->addFunction("leaf");
    const ProfilerArea state = profiler->addVariable("g_state");
    EXPECT_EQ(leaf.handle, 1u);
    EXPECT_EQ(state.handle, 2u);
    EXPECT_EQ(leaf.address, functionAddress("leaf"));
    EXPECT_EQ(state.address, variableAddress("g_state"));
    EXPECT_EQ(profiler->area(2).name, "g_state");
    EXPECT_EQ(profiler->area("leaf").handle, 1u);
    EXPECT_EQ(profiler->areaAt(state.address).handle, 2u);
    EXPECT_EQ(profiler->areaAt(leaf.address + 2).handle, 1u) << "inside the function";
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    EXPECT_EQ(profiler->areaCount(), 0u) << "a new configuration starts without areas";
}

TEST_F(Profiler, TheRecordingStartsOnlyWhileTheCoreStands)
{
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    profiler->addFunction("main");
    debug->run(); // main never returns
    ASSERT_TRUE(target->isRunning());
    EXPECT_EQ(profilerErrorOf([&] { profiler->start(); }).kind(), Kind::Running);
    debug->stop();
    ASSERT_TRUE(debug->waitUntilStopped(std::chrono::seconds(10)));
    profiler->start();
    debug->run();
    EXPECT_TRUE(profiler->status().isLoading) << "the figures still change";
    EXPECT_TRUE(profiler->stop()) << "a running core does not keep the recording from ending";
    EXPECT_FALSE(profiler->status().isLoading);
    debug->stop();
    ASSERT_TRUE(debug->waitUntilStopped(std::chrono::seconds(10)));
}

} // namespace
} // namespace quillon::services
