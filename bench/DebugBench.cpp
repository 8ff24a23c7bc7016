// Evaluation of a struct member through the data controller, across the C boundary into liborbel.so, with the
// example firmware stopped in filter_step.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "CBreakpointController.h"
#include "CDataController.h"
#include "CExecutionController.h"
#include "CLoaderController.h"
#include "ConnectionMgr.h"
#include "OrbelDebugFlags.h"

using namespace kestrix;

namespace {

/// A session stopped at the third call of filter_step.
struct StoppedFirmware {
    StoppedFirmware()
    {
        setenv("ORBEL_PATH", (std::string(ORBEL_BUILD_DIR) + "/").c_str(), 1);
        unsetenv("ORBEL_SHAREDMEM_PID");
        unsetenv("ORBEL_TCP_PORT");
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware/workspace.yaml");
        CLoaderController(mgr).download();
        CExecutionController execution(mgr);
        execution.reset();
        CBreakpointController(mgr).setBP("filter_step", 3);
        execution.run(2);
        data = std::make_unique<CDataController>(mgr);
    }

    std::shared_ptr<ConnectionMgr> mgr;
    std::unique_ptr<CDataController> data;
};

void BM_EvaluateStructMember(benchmark::State& state)
{
    static StoppedFirmware session;
    for (auto _ : state) {
        const CValueType value = session.data->evaluate(OrbelDebugFlags::fMonitor, "g_filter.count");
        benchmark::DoNotOptimize(value);
        if (value.isError() || value.getLong() != 2) {
            state.SkipWithError("g_filter.count is not 2 at the third call of filter_step");
            break;
        }
    }
}
BENCHMARK(BM_EvaluateStructMember)->Unit(benchmark::kMicrosecond);

void BM_EvaluateLocalTimesGlobal(benchmark::State& state)
{
    static StoppedFirmware session;
    for (auto _ : state) {
        benchmark::DoNotOptimize(session.data->evaluate(OrbelDebugFlags::fMonitor, "sample * g_gain"));
    }
}
BENCHMARK(BM_EvaluateLocalTimesGlobal)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
