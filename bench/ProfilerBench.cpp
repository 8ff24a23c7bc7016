// What the profiler costs the simulated core: a loop of the profiler firmware run as a test, alone, with the
// profiler following calls, and with it following calls and the writes of a data area. The counter is the
// core's instructions per second of host time.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "services/DebugService.h"
#include "services/ProfilerService.h"
#include "services/TestService.h"
#include "target/Target.h"

namespace {

using namespace quillon;

enum class Recording { None, Calls, CallsAndData };

class Bench {
public:
    Bench()
    {
        target::TargetConfig config;
        config.memory = {{"flash", 0x00000000, 0x40000, target::MemoryArea::Read | target::MemoryArea::Execute},
                         {"sram", 0x20000000, 0x10000,
                          target::MemoryArea::Read | target::MemoryArea::Write | target::MemoryArea::Execute}};
        m_target = std::make_unique<target::Target>(config);
        m_debug = std::make_unique<services::DebugService>(
            *m_target, std::vector<std::string>{std::string(FIRMWARE_DIR) + "/profiler.elf"});
        m_debug->download();
        m_tests = std::make_unique<services::TestService>(
            *m_target, 100000000, [this] { return m_debug->symbols().programs().front().debugInfo(); });
        m_profiler = std::make_unique<services::ProfilerService>(
            *m_target, [this](std::uint32_t flags, const std::string& name) { return m_debug->findSymbol(flags, name); });
    }

    void record(Recording recording)
    {
        if (recording == Recording::None) {
            return;
        }
        m_profiler->startConfiguration(services::ProfilerService::TimeBase::Cycles);
        m_profiler->addFunction("loop");
        if (recording == Recording::CallsAndData) {
            m_profiler->addVariable("g_sink");
        }
        m_profiler->start();
    }

    /// Runs loop(n) as a test; the instructions it took.
    std::uint64_t run(const std::string& n)
    {
        const std::uint32_t test = m_tests->createTest("loop");
        m_tests->createParameter(test, 0, "n");
        m_tests->init(test);
        m_tests->modify("n", n);
        const std::uint64_t before = m_target->cycles();
        m_tests->run(test);
        m_tests->waitWhileRunning(test, std::chrono::seconds(60));
        const std::uint64_t cycles = m_target->cycles() - before;
        m_tests->clean(test);
        m_tests->destroyTest(test);
        return cycles;
    }

private:
    std::unique_ptr<target::Target> m_target;
    std::unique_ptr<services::DebugService> m_debug;
    std::unique_ptr<services::TestService> m_tests;
    std::unique_ptr<services::ProfilerService> m_profiler;
};

void BM_ProfiledLoop(benchmark::State& state)
{
    Bench bench;
    bench.record(static_cast<Recording>(state.range(0)));
    std::uint64_t instructions = 0;
    for (auto _ : state) {
        instructions += bench.run("100000");
    }
    state.counters["instructions"] =
        benchmark::Counter(static_cast<double>(instructions), benchmark::Counter::kIsRate);
}

BENCHMARK(BM_ProfiledLoop)
    ->Arg(static_cast<int>(Recording::None))
    ->Arg(static_cast<int>(Recording::Calls))
    ->Arg(static_cast<int>(Recording::CallsAndData))
    ->ArgName("recording")
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
