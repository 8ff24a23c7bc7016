// Evaluation of expressions on a stopped target: a struct member through a pointer and an array;
// with scopes ready, with new scopes for each evaluation (a long-lived evaluator, as a debug
// service keeps one), and with the evaluator built for each evaluation too.
#include "debuginfo/DebugInfo.h"
#include "expr/ExpressionEvaluator.h"
#include "expr/ScopeChain.h"
#include "target/Target.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>

namespace {

using namespace quillon;

struct Stopped {
    debuginfo::DebugInfo debug = debuginfo::DebugInfo::open(std::string(FIRMWARE_DIR) + "/expr.elf");
    std::unique_ptr<target::Target> core;

    Stopped()
    {
        target::TargetConfig config;
        config.memory.push_back({"flash", 0x00000000, 0x40000, 1 | 4});
        config.memory.push_back({"sram", 0x20000000, 0x10000, 1 | 2 | 4});
        core = std::make_unique<target::Target>(config);
        for (const auto& segment : debug.elf().segments()) {
            if (!segment.bytes.empty()) {
                core->writeMemory(segment.physicalAddress, segment.bytes);
            }
        }
        core->reset();
        const std::uint32_t main = debug.breakpointAddress(*debug.findFunction("main"));
        core->setBreakpoint(main);
        if (core->runToStop().pc != main) {
            throw std::runtime_error("the firmware did not reach main");
        }
    }
};

Stopped& stopped()
{
    static Stopped instance;
    return instance;
}

void evaluateWithScopesReady(benchmark::State& state, const char* expression)
{
    Stopped& s = stopped();
    const expr::ScopeChain scopes = expr::ScopeChain::forStop(s.debug, *s.core);
    expr::ExpressionEvaluator evaluator(s.debug, *s.core, scopes);
    for (auto _ : state) {
        benchmark::DoNotOptimize(evaluator.evaluate(expression));
    }
}

void evaluateWithNewScopes(benchmark::State& state, const char* expression)
{
    Stopped& s = stopped();
    const expr::ScopeChain first = expr::ScopeChain::forStop(s.debug, *s.core);
    expr::ExpressionEvaluator evaluator(s.debug, *s.core, first);
    for (auto _ : state) {
        const expr::ScopeChain scopes = expr::ScopeChain::forStop(s.debug, *s.core);
        evaluator.setScopes(scopes);
        benchmark::DoNotOptimize(evaluator.evaluate(expression));
    }
}

void evaluateFromScratch(benchmark::State& state, const char* expression)
{
    Stopped& s = stopped();
    for (auto _ : state) {
        const expr::ScopeChain scopes = expr::ScopeChain::forStop(s.debug, *s.core);
        expr::ExpressionEvaluator evaluator(s.debug, *s.core, scopes);
        benchmark::DoNotOptimize(evaluator.evaluate(expression));
    }
}

BENCHMARK_CAPTURE(evaluateWithScopesReady, pointerMember, "g_point_ptr->y");
BENCHMARK_CAPTURE(evaluateWithScopesReady, arrayStructMember, "g_records[0].corners[1].y");
BENCHMARK_CAPTURE(evaluateWithNewScopes, pointerMember, "g_point_ptr->y");
BENCHMARK_CAPTURE(evaluateWithNewScopes, arrayStructMember, "g_records[0].corners[1].y");
BENCHMARK_CAPTURE(evaluateFromScratch, pointerMember, "g_point_ptr->y");
BENCHMARK_CAPTURE(evaluateFromScratch, arrayStructMember, "g_records[0].corners[1].y");
BENCHMARK_CAPTURE(evaluateFromScratch, comparison, "g_records[0].bits.wide == 703710");

} // namespace

BENCHMARK_MAIN();
