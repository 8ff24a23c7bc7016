// Instructions per second of firmware on the simulated target against Unicorn alone on the same code.
#include <benchmark/benchmark.h>
#include <unicorn/unicorn.h>

#include <cstring>
#include <memory>
#include <string>

#include "FirmwareImage.h"
#include "target/Target.h"

using namespace quillon::target;

namespace {

constexpr uint32_t returnAddress = 0x0FFFFF00;

const FirmwareImage& image()
{
    static const FirmwareImage firmware(FIRMWARE_DIR "/target_test.elf");
    return firmware;
}

TargetConfig config()
{
    TargetConfig c;
    c.memory = {{"flash", 0x00000000, 0x40000, MemoryArea::Read | MemoryArea::Execute},
                {"sram", 0x20000000, 0x10000, MemoryArea::Read | MemoryArea::Write}};
    return c;
}

/// A target stopped at main, ready for calls.
std::unique_ptr<Target> readyTarget()
{
    auto target = std::make_unique<Target>(config());
    image().load(*target);
    target->reset();
    target->setReturnAddress(returnAddress);
    RunOptions toMain;
    toMain.until = {image().symbol("main")};
    target->runToStop(toMain);
    return target;
}

void prepareCall(Target& target, const char* function, uint32_t arg)
{
    target.writeRegister(Register::R0, arg);
    target.writeRegister(Register::SP, target.readWord(0));
    target.writeRegister(Register::LR, returnAddress | 1u);
    target.writeRegister(Register::PC, image().symbol(function));
}

/// Instructions of one call, as the target counts them (the count is the same on every run).
uint64_t instructionsOf(const char* function, uint32_t arg)
{
    auto target = readyTarget();
    prepareCall(*target, function, arg);
    uint64_t before = target->cycles();
    target->runToStop();
    return target->cycles() - before;
}

void onTarget(benchmark::State& state, const char* function, uint32_t arg)
{
    auto target = readyTarget();
    uint64_t instructions = 0;
    for (auto _ : state) {
        prepareCall(*target, function, arg);
        uint64_t before = target->cycles();
        StopInfo stop = target->runToStop();
        if (stop.reason != StopReason::Returned) {
            state.SkipWithError(stop.message.c_str());
            break;
        }
        instructions += target->cycles() - before;
    }
    state.SetItemsProcessed(static_cast<int64_t>(instructions));
}

/// The same memory contents on a bare engine without hooks, running to the return address.
void onUnicorn(benchmark::State& state, const char* function, uint32_t arg)
{
    auto target = readyTarget();
    MemoryMap::Snapshot memory = target->snapshot();
    uc_engine* uc = nullptr;
    uc_open(UC_ARCH_ARM, UC_MODE_THUMB, &uc);
    uc_ctl_set_cpu_model(uc, UC_CPU_ARM_CORTEX_M3);
    const uint32_t perms[] = {UC_PROT_READ | UC_PROT_EXEC, UC_PROT_READ | UC_PROT_WRITE};
    for (size_t i = 0; i < memory.size(); ++i) {
        const MemoryArea& area = target->memory().areas()[i];
        uc_mem_map_ptr(uc, area.start(), area.size(), perms[i], memory[i].data());
    }
    const uint64_t perCall = instructionsOf(function, arg);
    const uint32_t sp = target->readWord(0), lr = returnAddress | 1u;
    uint64_t instructions = 0;
    for (auto _ : state) {
        uc_reg_write(uc, UC_ARM_REG_R0, &arg);
        uc_reg_write(uc, UC_ARM_REG_SP, &sp);
        uc_reg_write(uc, UC_ARM_REG_LR, &lr);
        uc_err err = uc_emu_start(uc, image().symbol(function) | 1u, returnAddress, 0, 0);
        if (err != UC_ERR_OK) {
            state.SkipWithError(uc_strerror(err));
            break;
        }
        instructions += perCall;
    }
    state.SetItemsProcessed(static_cast<int64_t>(instructions));
    uc_close(uc);
}

// The sensor filter at -O0: loads and stores as compiled C has them.
void TargetFilter(benchmark::State& state) { onTarget(state, "filter_bench", 20000); }
void UnicornFilter(benchmark::State& state) { onUnicorn(state, "filter_bench", 20000); }
// A loop in registers only: the emulator's best case, where a per-instruction hook costs most.
void TargetRegisterLoop(benchmark::State& state) { onTarget(state, "count_down", 5000000); }
void UnicornRegisterLoop(benchmark::State& state) { onUnicorn(state, "count_down", 5000000); }

// Latency of a breakpoint stop and resume on a loop: tick is hit once per call of count_ticks.
void TargetBreakpointStops(benchmark::State& state)
{
    auto target = readyTarget();
    target->setBreakpoint(image().symbol("tick"));
    prepareCall(*target, "count_ticks", 0xFFFFFFFFu);
    for (auto _ : state) {
        if (target->runToStop().reason != StopReason::Breakpoint) {
            state.SkipWithError("no breakpoint stop");
            break;
        }
    }
}

} // namespace

BENCHMARK(TargetFilter)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(UnicornFilter)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(TargetRegisterLoop)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(UnicornRegisterLoop)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(TargetBreakpointStops)->Unit(benchmark::kMicrosecond)->UseRealTime();

BENCHMARK_MAIN();
