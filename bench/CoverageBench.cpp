// The cost of coverage: the same test (a function of loops and branches of the analyzer firmware, run by the test
// service) without a recording, with an observer that does nothing (what the target's observers cost by
// themselves), with a coverage recording (code and branch outcomes), and with a trace of the function entries.
// Goal: coverage at most doubles the time of a test.
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "services/DebugService.h"
#include "services/DocumentService.h"
#include "services/TestService.h"
#include "target/Target.h"

using namespace quillon;

namespace {

constexpr const char* kRounds = "1000000";

target::TargetConfig board()
{
    using target::MemoryArea;
    target::TargetConfig config;
    config.memory = {{"flash", 0x00000000, 0x40000, MemoryArea::Read | MemoryArea::Execute},
                     {"sram", 0x20000000, 0x10000, MemoryArea::Read | MemoryArea::Write | MemoryArea::Execute},
                     {"periph", 0x40000000, 0x30000, MemoryArea::Read | MemoryArea::Write}};
    return config;
}

/// The firmware downloaded, a test service to run it, and documents that may record the runs.
struct Bench {
    Bench()
        : target(board()), debug(target, {std::string(FIRMWARE_DIR) + "/analyzers.elf"}),
          documents(target, debug.symbols(), services::DocumentService::Settings{std::filesystem::temp_directory_path(), {}, {}})
    {
        debug.download();
        target.setHostBudget(std::chrono::seconds(60)); // the whole run on this thread: its CPU time is the test's
        tests = std::make_unique<services::TestService>(
            target, 100000000, [this] { return debug.symbols().programs().front().debugInfo(); });
    }

    /// One test of mix(); its instructions.
    std::uint64_t runTest()
    {
        const std::uint32_t test = tests->createTest("mix");
        tests->createReturnValue(test, "rv");
        tests->createParameter(test, 0, "rounds");
        tests->init(test);
        tests->modify("rounds", kRounds);
        const std::uint64_t before = target.cycles();
        tests->run(test);
        tests->waitWhileRunning(test, std::chrono::seconds(60));
        const std::uint64_t instructions = target.cycles() - before;
        tests->destroyTest(test);
        return instructions;
    }

    target::Target target;
    services::DebugService debug;
    services::DocumentService documents;
    std::unique_ptr<services::TestService> tests;
};

void run(benchmark::State& state, const char* document, services::Document::Kind kind)
{
    Bench bench;
    if (document != nullptr) {
        bench.documents.open(document, false, kind, true);
        bench.documents.start(document);
    }
    std::uint64_t instructions = 0;
    for (auto _ : state) {
        instructions += bench.runTest();
    }
    if (document != nullptr) {
        bench.documents.stop(document);
        bench.documents.close(document, true);
    }
    state.counters["instructions/s"] =
        benchmark::Counter(static_cast<double>(instructions), benchmark::Counter::kIsRate);
}

struct Idle final : target::ExecutionObserver {
    void onInstruction(std::uint32_t, std::uint32_t, std::uint64_t) override {}
};

void BM_TestWithIdleObserver(benchmark::State& state)
{
    Bench bench;
    Idle idle;
    bench.target.addObserver(&idle);
    std::uint64_t instructions = 0;
    for (auto _ : state) {
        instructions += bench.runTest();
    }
    bench.target.removeObserver(&idle);
    state.counters["instructions/s"] =
        benchmark::Counter(static_cast<double>(instructions), benchmark::Counter::kIsRate);
}

void BM_TestWithoutRecording(benchmark::State& state)
{
    run(state, nullptr, services::Document::Kind::Coverage);
}

void BM_TestWithCoverage(benchmark::State& state)
{
    run(state, "bench-coverage.trd", services::Document::Kind::Coverage);
}

void BM_TestWithTrace(benchmark::State& state)
{
    run(state, "bench-trace.trd", services::Document::Kind::Analyzer);
}

} // namespace

BENCHMARK(BM_TestWithoutRecording)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TestWithIdleObserver)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TestWithCoverage)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TestWithTrace)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
