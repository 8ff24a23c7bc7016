#include "target/Target.h"

#include <algorithm>

#include "target/Engine.h"
#include "target/ExecutionObserver.h"
#include "target/Hex.h"
#include "target/TargetError.h"

namespace quillon::target {

namespace {

// Instructions per slice of a run: small on the caller's thread, so that its budget holds; larger on the run
// thread, where a slice only bounds how stale pc() gets.
constexpr uint64_t callerSlice = 1u << 16;
constexpr uint64_t runThreadSlice = 1u << 20;

constexpr uint32_t thumbBit = 1u << 24; // of xPSR

// The emulator's exception numbers (QEMU's EXCP_*) that a Cortex-M run can raise.
constexpr int excUndefined = 1;
constexpr int excSvc = 2;
constexpr int excBkpt = 7;
constexpr int excNoCoprocessor = 17;
constexpr int excInvalidState = 18;
constexpr int excStackOverflow = 19;
constexpr int excUnaligned = 22;

std::string exceptionText(int number)
{
    switch (number) {
    case excSvc:
        return "svc instruction";
    case excNoCoprocessor:
        return "coprocessor or FPU instruction the core does not have";
    case excStackOverflow:
        return "stack overflow";
    case excUnaligned:
        return "unaligned access";
    default:
        return "CPU exception " + std::to_string(number);
    }
}

/// Marks the calling thread as the engine's for its scope: register access then goes straight to the engine, whose
/// lock the thread holds.
class EngineThreadMark {
public:
    explicit EngineThreadMark(std::atomic<std::thread::id>& owner) : m_owner(owner)
    {
        m_owner.store(std::this_thread::get_id());
    }
    ~EngineThreadMark() { m_owner.store(std::thread::id()); }
    EngineThreadMark(const EngineThreadMark&) = delete;
    EngineThreadMark& operator=(const EngineThreadMark&) = delete;

private:
    std::atomic<std::thread::id>& m_owner;
};

} // namespace

// The engine's callbacks. They run on the engine's thread while the engine is locked, and never throw.
struct TargetHooks {
    static void onInstruction(uc_engine*, uint64_t address, uint32_t size, void* user) noexcept
    {
        auto* t = static_cast<Target*>(user);
        uint64_t n = t->m_cycles.load(std::memory_order_relaxed) + 1;
        t->m_cycles.store(n, std::memory_order_relaxed);
        if (n > t->m_limit.load(std::memory_order_relaxed)) {
            t->stopBefore(static_cast<uint32_t>(address));
            return; // the instruction does not execute now
        }
        if (!t->m_observers.empty()) {
            observe(t, static_cast<uint32_t>(address), size, n);
        }
        if (t->m_isBatching) {
            if (t->m_batchSize == t->m_batch.size()) {
                batchFull(t, n);
            }
            t->m_batch[t->m_batchSize++] = {static_cast<uint32_t>(address), size};
        }
    }

    // Out of line, so that the path of every instruction stays short.
    [[gnu::noinline]] static void observe(Target* t, uint32_t address, uint32_t size, uint64_t cycle) noexcept
    {
        t->flushObserved(address);
        t->m_observed = {address, size, cycle, true};
    }

    // A next instruction came: all of the batch ran.
    [[gnu::noinline]] static void batchFull(Target* t, uint64_t cycle) noexcept
    {
        t->flushBatch(t->m_batchSize);
        t->m_batchCycle = cycle;
    }

    static void onWrite(uc_engine*, uc_mem_type, uint64_t address, int size, int64_t value, void* user) noexcept
    {
        auto* t = static_cast<Target*>(user);
        t->flushObserved(std::nullopt); // the writing instruction runs: observers see it first
        const uint64_t bits = size >= 8 ? static_cast<uint64_t>(value)
                                        : static_cast<uint64_t>(value) & ((uint64_t{1} << (8 * size)) - 1);
        const uint64_t cycle = t->m_cycles.load(std::memory_order_relaxed);
        for (ExecutionObserver* observer : t->m_writeObservers) {
            observer->onWrite(static_cast<uint32_t>(address), static_cast<uint32_t>(size), bits, cycle);
        }
    }

    // The first instruction of a run, at its start address.
    static bool isRunStart(const Target* t, uint64_t address)
    {
        return address == t->m_run.startPc && t->m_cycles.load(std::memory_order_relaxed) == t->m_run.startCycles + 1;
    }

    static void onBreakpoint(uc_engine*, uint64_t address, uint32_t, void* user) noexcept
    {
        auto* t = static_cast<Target*>(user);
        auto it = t->m_breakpoints.find(static_cast<uint32_t>(address));
        if (it == t->m_breakpoints.end() || (t->m_run.passBreakpointAtStart && isRunStart(t, address))) {
            return;
        }
        bool stops = false;
        try {
            stops = it->second.breakpoint.pass();
        } catch (const std::exception& e) {
            stops = true;
            t->m_hookStop.conditionError = e.what();
        } catch (...) {
            stops = true;
            t->m_hookStop.conditionError = "the condition failed";
        }
        if (stops) {
            t->m_hookStop.breakpoint = static_cast<uint32_t>(address);
            t->stopBefore(static_cast<uint32_t>(address));
        }
    }

    static void onUntil(uc_engine*, uint64_t address, uint32_t, void* user) noexcept
    {
        auto* t = static_cast<Target*>(user);
        if (!isRunStart(t, address)) { // a run from an until-address goes on to its next pass
            t->m_hookStop.untilReached = static_cast<uint32_t>(address);
            t->stopBefore(static_cast<uint32_t>(address));
        }
    }

    static bool onMemoryFault(uc_engine*, uc_mem_type, uint64_t address, int, int64_t, void* user) noexcept
    {
        auto* t = static_cast<Target*>(user);
        t->m_hookStop.memoryAddress = address;
        return false; // the access fails and the engine stops with its error
    }

    static void onException(uc_engine*, uint32_t number, void* user) noexcept
    {
        auto* t = static_cast<Target*>(user);
        t->m_hookStop.exception = static_cast<int>(number);
        t->m_engine->stopFromHook();
    }
};

Target::Target(const TargetConfig& config)
    : m_cpu(CpuModel::fromName(config.cpu)), m_clockHz(config.clockHz),
      m_engine(std::make_unique<Engine>(m_cpu.engineModel()))
{
    if (m_clockHz == 0) {
        throw TargetError(TargetError::Kind::InvalidArgument, "the clock must be above 0 Hz");
    }
    uint32_t page = m_engine->pageSize();
    for (const TargetConfig::Area& a : config.memory) {
        if (a.start % page != 0 || a.size % page != 0) {
            throw TargetError(TargetError::Kind::InvalidArgument, "memory area '" + a.name + "' must start and end on a " +
                                                                      std::to_string(page) + "-byte boundary");
        }
        MemoryArea& area = m_memory.add(a.name, a.start, a.size, a.access);
        m_engine->map(area.start(), area.size(), area.access(), area.data());
    }
    // The counting hook first: at an address with several hooks it has counted the instruction before the others.
    m_engine->addCodeHook(&TargetHooks::onInstruction, this, 1, 0);
    m_engine->addHook(UC_HOOK_MEM_INVALID, reinterpret_cast<void*>(&TargetHooks::onMemoryFault), this);
    m_engine->addHook(UC_HOOK_INTR, reinterpret_cast<void*>(&TargetHooks::onException), this);
}

Target::~Target()
{
    stop();
    waitUntilStopped();
}

// Engine access for reads: a stopped target, or a hook (a breakpoint condition) on the engine's thread.
template <class F> auto Target::withEngine(F&& f) const
{
    if (onEngineThread()) {
        return f();
    }
    auto refuseWhileRunning = [this] {
        if (m_running.load()) {
            throw TargetError(TargetError::Kind::Running, "the target is running");
        }
    };
    refuseWhileRunning(); // without waiting for the slice of the run that holds the engine
    std::lock_guard<std::mutex> lock(m_engineMutex);
    refuseWhileRunning();
    return f();
}

// Engine access that changes code, hooks or the run: a stopped target, never from a hook.
template <class F> auto Target::withStoppedEngine(F&& f)
{
    if (onEngineThread()) {
        throw TargetError(TargetError::Kind::Running, "not possible while the target is running");
    }
    return withEngine(std::forward<F>(f));
}

void Target::readMemory(uint32_t address, void* out, size_t size) const
{
    m_memory.read(address, out, size);
}

std::vector<uint8_t> Target::readMemory(uint32_t address, size_t size) const
{
    std::vector<uint8_t> bytes(size);
    m_memory.read(address, bytes.data(), size);
    return bytes;
}

uint32_t Target::readWord(uint32_t address) const
{
    uint8_t b[4];
    m_memory.read(address, b, sizeof b);
    return uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
}

void Target::writeMemory(uint32_t address, const void* data, size_t size)
{
    withStoppedEngine([&] {
        m_memory.write(address, data, size);
        dropTranslationsOfCode(address, uint64_t(address) + size);
    });
}

void Target::writeMemory(uint32_t address, const std::vector<uint8_t>& bytes)
{
    writeMemory(address, bytes.data(), bytes.size());
}

MemoryMap::Snapshot Target::snapshot() const
{
    return m_memory.snapshot();
}

void Target::restore(const MemoryMap::Snapshot& snapshot)
{
    withStoppedEngine([&] {
        m_memory.restore(snapshot);
        dropTranslationsOfCode(0, uint64_t(1) << 32);
    });
}

// Host writes bypass the engine, so translated code of the range is stale.
void Target::dropTranslationsOfCode(uint64_t begin, uint64_t end)
{
    for (const MemoryArea& area : m_memory.areas()) {
        uint64_t from = std::max<uint64_t>(begin, area.start());
        uint64_t to = std::min<uint64_t>(end, area.end());
        if ((area.access() & MemoryArea::Execute) && from < to) {
            m_engine->dropTranslations(from, to);
        }
    }
}

void Target::addObserver(ExecutionObserver* observer, bool watchWrites)
{
    if (observer == nullptr) {
        throw TargetError(TargetError::Kind::InvalidArgument, "no observer given");
    }
    withStoppedEngine([&] {
        auto& list = observer->takesBatches() ? m_batchObservers : m_observers;
        if (std::find(list.begin(), list.end(), observer) == list.end()) {
            list.push_back(observer);
        }
        m_isBatching = !m_batchObservers.empty();
        if (watchWrites && std::find(m_writeObservers.begin(), m_writeObservers.end(), observer) == m_writeObservers.end()) {
            m_writeObservers.push_back(observer);
            updateWriteHook();
        }
    });
}

void Target::removeObserver(ExecutionObserver* observer)
{
    withStoppedEngine([&] {
        m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), observer), m_observers.end());
        m_batchObservers.erase(std::remove(m_batchObservers.begin(), m_batchObservers.end(), observer),
                               m_batchObservers.end());
        m_isBatching = !m_batchObservers.empty();
        m_writeObservers.erase(std::remove(m_writeObservers.begin(), m_writeObservers.end(), observer),
                               m_writeObservers.end());
        updateWriteHook();
    });
}

// Engine locked, target stopped: the observers look at the registers that the run starts from.
void Target::tellRunStart()
{
    if (m_observers.empty() && m_batchObservers.empty()) {
        return;
    }
    EngineThreadMark mark(m_engineThread);
    for (ExecutionObserver* observer : m_observers) {
        observer->onRunStart(m_cycles.load());
    }
    for (ExecutionObserver* observer : m_batchObservers) {
        observer->onRunStart(m_cycles.load());
    }
}

// Observers hear of an instruction once the next one comes, a write of it, or the end of the slice, so that an
// instruction that a later hook at its address stops before is never reported.
void Target::flushObserved(std::optional<uint32_t> next)
{
    if (!m_observed.pending) {
        return;
    }
    m_observed.pending = false;
    m_nextAddress = next;
    for (ExecutionObserver* observer : m_observers) {
        observer->onInstruction(m_observed.address, m_observed.size, m_observed.cycle);
    }
    m_nextAddress.reset();
}

void Target::flushBatch(size_t count)
{
    if (count > 0) {
        for (ExecutionObserver* observer : m_batchObservers) {
            observer->onInstructions(m_batch.data(), count, m_batchCycle);
        }
    }
    m_batchSize = 0;
}

// The write hook costs on every store: it is there only while someone watches writes. Translated code has the
// hooks of its time compiled in, so it is dropped on each change.
void Target::updateWriteHook()
{
    const bool isWanted = !m_writeObservers.empty();
    if (isWanted == m_writeHook.has_value()) {
        return;
    }
    if (isWanted) {
        m_writeHook = m_engine->addHook(UC_HOOK_MEM_WRITE, reinterpret_cast<void*>(&TargetHooks::onWrite), this);
    } else {
        m_engine->removeHook(*m_writeHook);
        m_writeHook.reset();
    }
    dropTranslationsOfCode(0, uint64_t{1} << 32);
}

uint32_t Target::readRegister(Register reg) const
{
    return withEngine([&] { return m_engine->readRegister(RegisterTable::engineId(reg)); });
}

uint32_t Target::readRegister(std::string_view name) const
{
    auto reg = RegisterTable::find(name);
    if (!reg) {
        throw TargetError(TargetError::Kind::InvalidArgument, "unknown register '" + std::string(name) + "'");
    }
    return readRegister(*reg);
}

void Target::writeRegister(Register reg, uint32_t value)
{
    withEngine([&] {
        m_engine->writeRegister(RegisterTable::engineId(reg), reg == Register::PC ? value | 1u : value);
        if (reg == Register::PC) {
            m_pc.store(value & ~1u);
        }
    });
}

void Target::writeRegister(std::string_view name, uint32_t value)
{
    auto reg = RegisterTable::find(name);
    if (!reg) {
        throw TargetError(TargetError::Kind::InvalidArgument, "unknown register '" + std::string(name) + "'");
    }
    writeRegister(*reg, value);
}

void Target::reset()
{
    withStoppedEngine([&] {
        if (!m_memory.isMapped(0, 8)) {
            throw TargetError(TargetError::Kind::BadAddress, "no vector table at " + hex32(0));
        }
        uint32_t stack = readWord(0);
        uint32_t entry = readWord(4);
        for (Register reg : RegisterTable::all()) {
            m_engine->writeRegister(RegisterTable::engineId(reg), 0);
        }
        m_engine->writeRegister(UC_ARM_REG_MSP, stack & ~3u);
        m_engine->writeRegister(UC_ARM_REG_LR, 0xFFFFFFFFu);
        m_engine->writeRegister(UC_ARM_REG_XPSR, thumbBit);
        m_engine->writeRegister(UC_ARM_REG_PC, entry | 1u);
        m_cycles.store(0);
        m_stoppedAtBreakpoint.reset();
        m_pc.store(entry & ~1u);
        StopInfo info;
        info.reason = StopReason::Reset;
        info.pc = entry & ~1u;
        info.message = "reset";
        std::lock_guard<std::mutex> lock(m_statusMutex);
        m_stopInfo = info;
    });
}

void Target::setBreakpoint(uint32_t address, BreakpointOptions options)
{
    address &= ~1u;
    withStoppedEngine([&] {
        auto it = m_breakpoints.find(address);
        if (it != m_breakpoints.end()) {
            it->second.breakpoint = Breakpoint(address, std::move(options));
            return;
        }
        size_t hook = m_engine->addCodeHook(&TargetHooks::onBreakpoint, this, address, address);
        m_breakpoints.emplace(address, BreakpointEntry{Breakpoint(address, std::move(options)), hook});
        // Hooks are compiled into translated code: code translated before misses the new one.
        m_engine->dropTranslations(address, address + 2);
    });
}

bool Target::removeBreakpoint(uint32_t address)
{
    address &= ~1u;
    return withStoppedEngine([&] {
        auto it = m_breakpoints.find(address);
        if (it == m_breakpoints.end()) {
            return false;
        }
        m_engine->removeHook(it->second.hook);
        m_engine->dropTranslations(address, address + 2);
        m_breakpoints.erase(it);
        return true;
    });
}

void Target::removeAllBreakpoints()
{
    withStoppedEngine([&] {
        for (auto& [address, entry] : m_breakpoints) {
            m_engine->removeHook(entry.hook);
            m_engine->dropTranslations(address, address + 2);
        }
        m_breakpoints.clear();
    });
}

bool Target::enableBreakpoint(uint32_t address, bool enabled)
{
    return withStoppedEngine([&] {
        auto it = m_breakpoints.find(address & ~1u);
        if (it == m_breakpoints.end()) {
            return false;
        }
        it->second.breakpoint.setEnabled(enabled);
        return true;
    });
}

std::optional<Breakpoint> Target::breakpoint(uint32_t address) const
{
    return withEngine([&]() -> std::optional<Breakpoint> {
        auto it = m_breakpoints.find(address & ~1u);
        if (it == m_breakpoints.end()) {
            return std::nullopt;
        }
        return it->second.breakpoint;
    });
}

std::vector<Breakpoint> Target::breakpoints() const
{
    return withEngine([&] {
        std::vector<Breakpoint> list;
        for (const auto& entry : m_breakpoints) {
            list.push_back(entry.second.breakpoint);
        }
        return list;
    });
}

void Target::setReturnAddress(std::optional<uint32_t> address)
{
    withStoppedEngine([&] {
        m_returnAddress = address ? std::optional<uint32_t>(*address & ~1u) : std::nullopt;
        std::vector<uint64_t> exits;
        if (m_returnAddress) {
            exits.push_back(*m_returnAddress);
        }
        m_engine->setExits(exits);
    });
}

std::optional<uint32_t> Target::returnAddress() const
{
    return withEngine([&] { return m_returnAddress; });
}

void Target::run(const RunOptions& options)
{
    start(RunPlan{options.until, options.instructionLimit, false});
}

void Target::step(uint64_t instructions)
{
    if (instructions == 0) {
        throw TargetError(TargetError::Kind::InvalidArgument, "a step needs at least one instruction");
    }
    start(RunPlan{{}, instructions, true});
}

StopInfo Target::runToStop(const RunOptions& options)
{
    run(options);
    waitUntilStopped();
    return stopInfo();
}

void Target::start(const RunPlan& plan)
{
    withStoppedEngine([&] { prepareRun(plan); });
    auto deadline = Clock::now() + std::chrono::microseconds(m_budget.load());
    if (!execute(deadline, callerSlice)) {
        m_runThread.post([this] { execute(Clock::time_point::max(), runThreadSlice); });
    }
}

// Engine locked, target stopped.
void Target::prepareRun(const RunPlan& plan)
{
    m_run = Run{};
    m_run.startCycles = m_cycles.load();
    m_run.startPc = m_engine->readRegister(UC_ARM_REG_PC);
    m_run.limitEnd = plan.limit == 0 ? 0 : m_run.startCycles + plan.limit;
    m_run.step = plan.step;
    m_run.passBreakpointAtStart = plan.step || m_stoppedAtBreakpoint == m_run.startPc;
    tellRunStart();
    try {
        for (uint32_t address : plan.until) {
            address &= ~1u;
            m_run.untilHooks.push_back(m_engine->addCodeHook(&TargetHooks::onUntil, this, address, address));
            m_engine->dropTranslations(address, address + 2);
        }
    } catch (...) {
        for (size_t hook : m_run.untilHooks) {
            m_engine->removeHook(hook);
        }
        throw;
    }
    m_stopRequested.store(false);
    std::lock_guard<std::mutex> lock(m_statusMutex);
    m_running.store(true);
}

// Slices of the run until it stops (true) or the host deadline passes (false). Never throws: an engine failure
// ends the run as a fault.
bool Target::execute(Clock::time_point deadline, uint64_t slice)
{
    for (;;) {
        std::lock_guard<std::mutex> lock(m_engineMutex);
        try {
            if (auto stop = runSlice(slice)) {
                finishRun(*stop);
                return true;
            }
        } catch (const std::exception& e) {
            StopInfo info;
            info.reason = StopReason::Fault;
            info.fault = FaultKind::Engine;
            info.pc = m_pc.load();
            info.message = e.what();
            finishRun(info);
            return true;
        }
        if (Clock::now() >= deadline) {
            return false;
        }
    }
}

std::optional<StopInfo> Target::runSlice(uint64_t slice)
{
    uint64_t end = m_cycles.load() + slice;
    if (m_run.limitEnd != 0) {
        end = std::min(end, m_run.limitEnd);
    }
    // Set the slice's limit before looking at the stop flag: stop() sets the flag before it zeroes the limit, so
    // a stop is seen here or by the counting hook.
    m_limit.store(end);
    uint32_t pc = m_engine->readRegister(UC_ARM_REG_PC);
    if (m_stopRequested.load()) {
        StopInfo info;
        info.reason = StopReason::StopRequest;
        info.pc = pc;
        info.message = "stopped on request";
        return info;
    }
    m_hookStop = HookStop{};
    uint64_t before = m_cycles.load();
    m_batchCycle = before + 1; // the batch is empty
    uint32_t from = pc;
    std::optional<StopInfo> stop;
    {
        EngineThreadMark mark(m_engineThread);
        uc_err err = m_engine->start(pc);
        pc = m_engine->readRegister(UC_ARM_REG_PC);
        if (err == UC_ERR_OK && m_hookStop.requested && pc == m_hookStop.address) {
            m_cycles.store(m_cycles.load() - 1); // counted, but stopped before it ran
        }
        m_pc.store(pc);
        stop = classify(err, pc);
        // An instruction that a hook stopped before, or a bkpt, was taken back from the count: it did not run.
        if (m_observed.pending && m_observed.cycle > m_cycles.load()) {
            m_observed.pending = false;
        }
        flushObserved(pc); // still as the engine's thread: observers may read registers
        // The batch holds what the count holds: not an instruction stopped before, nor a bkpt.
        const uint64_t ran = m_cycles.load() + 1 - m_batchCycle;
        flushBatch(static_cast<size_t>(std::min<uint64_t>(m_batchSize, ran)));
    }
    if (!stop && m_cycles.load() == before && pc == from) {
        StopInfo info;
        info.reason = StopReason::Fault;
        info.fault = FaultKind::Engine;
        info.pc = pc;
        info.message = "the core makes no progress at " + hex32(pc);
        return info;
    }
    return stop;
}

std::optional<StopInfo> Target::classify(int err, uint32_t pc)
{
    if (err != UC_ERR_OK) {
        return faultStop(err, pc);
    }
    if (m_hookStop.exception >= 0) {
        return exceptionStop(pc);
    }
    StopInfo info;
    info.pc = pc;
    if (m_hookStop.breakpoint) {
        info.reason = StopReason::Breakpoint;
        info.address = *m_hookStop.breakpoint;
        info.message = "breakpoint at " + hex32(info.address);
        if (!m_hookStop.conditionError.empty()) {
            info.message += ": condition failed: " + m_hookStop.conditionError;
        }
    } else if (m_returnAddress && pc == *m_returnAddress) {
        info.reason = StopReason::Returned;
        info.address = pc;
        info.message = "returned to " + hex32(pc);
    } else if (m_hookStop.untilReached) {
        info.reason = StopReason::RunUntilReached;
        info.address = *m_hookStop.untilReached;
        info.message = "reached " + hex32(info.address);
    } else if (m_stopRequested.load()) {
        info.reason = StopReason::StopRequest;
        info.message = "stopped on request";
    } else if (m_run.limitEnd != 0 && m_cycles.load() >= m_run.limitEnd) {
        info.reason = m_run.step ? StopReason::StepDone : StopReason::InstructionLimit;
        info.message = m_run.step ? "step done" : "instruction limit of " +
                                                      std::to_string(m_run.limitEnd - m_run.startCycles) + " reached";
    } else {
        return std::nullopt; // end of the slice, or a wfi: the run goes on
    }
    return info;
}

StopInfo Target::faultStop(int err, uint32_t pc) const
{
    StopInfo info;
    info.reason = StopReason::Fault;
    info.pc = pc;
    uint64_t address = m_hookStop.memoryAddress;
    const MemoryArea* area = m_memory.find(address);
    auto denied = [&](FaultKind kind, const char* verb, const char* preposition, const char* right) {
        info.fault = kind;
        info.address = static_cast<uint32_t>(address);
        info.message = std::string(verb) + " " + preposition + " " + hex32(address) + " in area '" +
                       (area ? area->name() : std::string("?")) + "' without " + right + " access";
    };
    auto unmapped = [&](FaultKind kind, const char* verb) {
        info.fault = kind;
        info.address = static_cast<uint32_t>(address);
        info.message = std::string(verb) + " unmapped address " + hex32(address);
    };
    switch (err) {
    case UC_ERR_READ_UNMAPPED:
        unmapped(FaultKind::UnmappedRead, "read from");
        break;
    case UC_ERR_WRITE_UNMAPPED:
        unmapped(FaultKind::UnmappedWrite, "write to");
        break;
    case UC_ERR_FETCH_UNMAPPED:
        unmapped(FaultKind::UnmappedFetch, "fetch from");
        break;
    case UC_ERR_READ_PROT:
        denied(FaultKind::ReadDenied, "read", "from", "read");
        break;
    case UC_ERR_WRITE_PROT:
        denied(FaultKind::WriteDenied, "write", "to", "write");
        break;
    case UC_ERR_FETCH_PROT:
        denied(FaultKind::FetchDenied, "fetch", "from", "execute");
        break;
    case UC_ERR_INSN_INVALID:
        if ((m_engine->readRegister(UC_ARM_REG_XPSR) & thumbBit) == 0) {
            info.fault = FaultKind::InvalidState;
            info.message = "branch to " + hex32(pc) + " without the Thumb bit";
        } else {
            info.fault = FaultKind::UndefinedInstruction;
            info.message = "undefined instruction at " + hex32(pc);
        }
        break;
    default:
        info.fault = FaultKind::Engine;
        info.message = std::string("emulator stopped: ") + uc_strerror(static_cast<uc_err>(err));
        break;
    }
    return info;
}

StopInfo Target::exceptionStop(uint32_t pc)
{
    StopInfo info;
    info.pc = pc;
    info.exception = m_hookStop.exception;
    switch (m_hookStop.exception) {
    case excBkpt: // a debugger halts at a bkpt instruction, before it
        info.reason = StopReason::Breakpoint;
        info.address = pc;
        info.message = "bkpt instruction at " + hex32(pc);
        m_cycles.store(m_cycles.load() - 1);
        return info;
    case excUndefined:
        info.fault = FaultKind::UndefinedInstruction;
        info.message = "undefined instruction at " + hex32(pc);
        break;
    case excInvalidState:
        info.fault = FaultKind::InvalidState;
        info.message = "branch to " + hex32(pc) + " without the Thumb bit";
        break;
    default:
        info.fault = FaultKind::Exception;
        info.message = exceptionText(m_hookStop.exception) + " at " + hex32(pc);
        break;
    }
    info.reason = StopReason::Fault;
    return info;
}

// Engine locked.
void Target::finishRun(const StopInfo& info)
{
    for (size_t hook : m_run.untilHooks) {
        try {
            m_engine->removeHook(hook);
        } catch (const TargetError&) {
            // a hook that cannot be removed fires no more once its run is over
        }
    }
    m_run.untilHooks.clear();
    bool byBreakpoint = info.reason == StopReason::Breakpoint && m_hookStop.breakpoint;
    m_stoppedAtBreakpoint = byBreakpoint ? std::optional<uint32_t>(info.pc) : std::nullopt;
    m_pc.store(info.pc);
    {
        std::lock_guard<std::mutex> lock(m_statusMutex);
        m_stopInfo = info;
        m_running.store(false);
    }
    m_stoppedSignal.notify_all();
}

// On the engine's thread: stop before the instruction at `address`.
void Target::stopBefore(uint32_t address)
{
    m_hookStop.requested = true;
    m_hookStop.address = address;
    m_engine->stopFromHook();
}

void Target::stop()
{
    m_stopRequested.store(true);
    m_limit.store(0);
}

bool Target::waitUntilStopped(std::chrono::milliseconds timeout) const
{
    if (onEngineThread()) {
        throw TargetError(TargetError::Kind::Running, "cannot wait for the target from inside its run");
    }
    std::unique_lock<std::mutex> lock(m_statusMutex);
    return m_stoppedSignal.wait_for(lock, timeout, [this] { return !m_running.load(); });
}

void Target::waitUntilStopped() const
{
    if (onEngineThread()) {
        throw TargetError(TargetError::Kind::Running, "cannot wait for the target from inside its run");
    }
    std::unique_lock<std::mutex> lock(m_statusMutex);
    m_stoppedSignal.wait(lock, [this] { return !m_running.load(); });
}

void Target::restoreStop(const StopInfo& info)
{
    withStoppedEngine([&] {
        m_stoppedAtBreakpoint =
            info.reason == StopReason::Breakpoint ? std::optional<uint32_t>(info.pc) : std::nullopt;
        std::lock_guard<std::mutex> lock(m_statusMutex);
        m_stopInfo = info;
    });
}

StopInfo Target::stopInfo() const
{
    std::lock_guard<std::mutex> lock(m_statusMutex);
    return m_stopInfo;
}

double Target::simulatedSeconds() const
{
    return static_cast<double>(cycles()) / static_cast<double>(m_clockHz);
}

} // namespace quillon::target
