#include "ProfilerFixture.h"

#include "ServiceFixture.h"

namespace quillon::services {

void ProfilerFixture::SetUp()
{
    target::TargetConfig config = boardConfig();
    config.clockHz = kClockHz;
    target = std::make_unique<target::Target>(config);
    debug = std::make_unique<DebugService>(*target, std::vector<std::string>{std::string(FIRMWARE_DIR) + "/profiler.elf"});
    debug->download();
    tests = std::make_unique<TestService>(*target, 5000000, [this] { return debug->symbols().programs().front().debugInfo(); });
    profiler = std::make_unique<ProfilerService>(
        *target, [this](std::uint32_t flags, const std::string& name) { return debug->findSymbol(flags, name); });
}

std::uint64_t ProfilerFixture::runTest(const std::string& function, const std::vector<std::string>& arguments,
                                       const std::vector<std::string>& stubbed)
{
    const std::uint32_t test = tests->createTest(function);
    for (unsigned i = 0; i < arguments.size(); ++i) {
        tests->createParameter(test, i, "p" + std::to_string(i));
    }
    for (const std::string& stub : stubbed) {
        tests->createStub(stub);
    }
    tests->init(test);
    for (unsigned i = 0; i < arguments.size(); ++i) {
        tests->modify("p" + std::to_string(i), arguments[i]);
    }
    const std::uint64_t before = target->cycles();
    TestState state = TestState::Stub;
    while (state == TestState::Stub) {
        tests->run(test);
        EXPECT_TRUE(tests->waitWhileRunning(test, std::chrono::seconds(20)));
        state = tests->state(test);
    }
    EXPECT_EQ(state, TestState::Ended) << tests->problem(test);
    const std::uint64_t cycles = target->cycles() - before;
    tests->clean(test);
    tests->destroyTest(test);
    return cycles;
}

std::uint32_t ProfilerFixture::symbolAddress(std::uint32_t flags, const std::string& name) const
{
    const auto symbol = debug->findSymbol(flags, name);
    EXPECT_TRUE(symbol.has_value()) << name;
    return symbol ? symbol->address & ~1u : 0;
}

void ProfilerFixture::recordFunctions(const std::vector<std::string>& functions)
{
    profiler->startConfiguration(ProfilerService::TimeBase::Cycles);
    for (const std::string& function : functions) {
        profiler->addFunction(function);
    }
    profiler->start();
}

std::vector<ProfilerService::Statistic> ProfilerFixture::statisticsOf(const std::string& area) const
{
    ProfilerService::Selection selection;
    selection.handle = profiler->area(area).handle;
    return profiler->statistics(selection);
}

ProfilerService::Statistic ProfilerFixture::codeStatistic(const std::string& area) const
{
    const std::vector<ProfilerService::Statistic> found = statisticsOf(area);
    EXPECT_LE(found.size(), 1u) << area;
    return found.empty() ? ProfilerService::Statistic() : found.front();
}

ProfilerService::Statistic ProfilerFixture::valueStatistic(const std::string& area, std::uint32_t value) const
{
    ProfilerService::Selection selection;
    selection.handle = profiler->area(area).handle;
    selection.value = value;
    const std::vector<ProfilerService::Statistic> found = profiler->statistics(selection);
    EXPECT_LE(found.size(), 1u) << area << " = " << value;
    return found.empty() ? ProfilerService::Statistic() : found.front();
}

std::vector<ProfilerService::Event> ProfilerFixture::historyOf(const std::string& area) const
{
    ProfilerService::Selection selection;
    selection.handle = profiler->area(area).handle;
    return profiler->history(selection, 0, 100000);
}

} // namespace quillon::services
