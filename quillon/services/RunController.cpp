#include "services/RunController.h"

#include <algorithm>
#include <thread>

#include "services/ServiceError.h"
#include "services/TargetFrame.h"
#include "target/TargetError.h"

namespace quillon::services {

namespace {

// Marks a step of several runs as going on while it lasts.
class BusyScope {
public:
    explicit BusyScope(std::atomic<bool>& busy) : m_busy(busy) { m_busy.store(true); }
    ~BusyScope() { m_busy.store(false); }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    std::atomic<bool>& m_busy;
};

} // namespace

void RunController::begin(Command command)
{
    requireStopped("this command");
    m_stopRequested.store(false);
    std::lock_guard<std::mutex> lock(m_mutex);
    m_command = command;
    m_cause.reset();
    m_message.clear();
}

void RunController::finish(std::optional<StopCause> cause, std::string message)
{
    if (!cause && m_stopRequested.load() && m_target.stopInfo().reason != target::StopReason::StopRequest) {
        cause = StopCause::StopRequest; // the request came between two runs of the step
        message = "stopped on request";
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_cause = cause;
    m_message = std::move(message);
}

void RunController::requireStopped(const std::string& operation) const
{
    if (m_target.isRunning() || m_busy.load()) {
        throw ServiceError(ServiceError::Kind::Running, "cannot do " + operation + ": the target is running");
    }
}

void RunController::run()
{
    begin(Command::Run);
    m_target.run();
}

void RunController::runUntil(std::uint32_t address)
{
    begin(Command::RunUntil);
    target::RunOptions options;
    options.until.push_back(address);
    m_target.run(options);
}

void RunController::runUntilReturn()
{
    begin(Command::RunUntil);
    std::uint32_t pc = m_target.pc();
    std::uint32_t returnAddress = 0;
    if (auto caller = m_symbols.unwind(pc, TargetFrame(m_target))) {
        returnAddress = caller->pc();
    } else {
        std::uint32_t lr = m_target.readRegister(target::Register::LR);
        if ((lr & 0xFFFFFF00u) == 0xFFFFFF00u) {
            throw ServiceError(ServiceError::Kind::NotAvailable,
                               "cannot run until return: the frame at the pc has no caller");
        }
        returnAddress = lr & ~1u;
    }
    target::RunOptions options;
    options.until.push_back(returnAddress);
    m_target.run(options);
}

void RunController::stop()
{
    m_stopRequested.store(true);
    m_target.stop();
}

void RunController::reset()
{
    m_stopRequested.store(true);
    m_target.stop();
    m_target.waitUntilStopped();
    begin(Command::None);
    m_target.reset();
}

void RunController::setExecutionPoint(std::uint32_t address)
{
    requireStopped("set the execution point");
    m_target.writeRegister(target::Register::PC, address);
}

bool RunController::continues(target::StopReason reason)
{
    return reason == target::StopReason::StepDone || reason == target::StopReason::RunUntilReached;
}

bool RunController::stepOnce()
{
    m_target.step(1);
    m_target.waitUntilStopped();
    return continues(m_target.stopInfo().reason);
}

// Runs until `address` is next with sp at or above `minimumSp` (deeper recursive frames run on).
bool RunController::runTo(std::uint32_t address, std::uint32_t minimumSp)
{
    for (;;) {
        target::RunOptions options;
        options.until.push_back(address);
        m_target.run(options);
        m_target.waitUntilStopped();
        if (m_target.stopInfo().reason != target::StopReason::RunUntilReached) {
            return false;
        }
        if (sp() >= minimumSp) {
            return true;
        }
        if (m_stopRequested.load()) {
            return false;
        }
    }
}

void RunController::stepInstruction()
{
    begin(Command::Step);
    BusyScope busy(m_busy);
    stepOnce();
    finish(std::nullopt);
}

void RunController::stepOverInstruction()
{
    begin(Command::Step);
    BusyScope busy(m_busy);
    std::uint32_t from = m_target.pc();
    auto call = callLength(from);
    bool done = call ? runTo(from + *call, sp()) : stepOnce();
    finish(done ? std::optional<StopCause>(StopCause::Step) : std::nullopt);
}

void RunController::stepLine()
{
    lineStep(false);
}

void RunController::stepOverLine()
{
    lineStep(true);
}

void RunController::lineStep(bool over)
{
    begin(Command::Step);
    BusyScope busy(m_busy);
    auto range = m_symbols.lineRange(m_target.pc());
    if (!range) {
        std::uint32_t from = m_target.pc();
        auto call = over ? callLength(from) : std::nullopt;
        bool done = call ? runTo(from + *call, sp()) : stepOnce();
        finish(done ? std::optional<StopCause>(StopCause::Step) : std::nullopt);
        return;
    }
    for (unsigned n = 0; n < maxLineStepInstructions; ++n) {
        if (m_stopRequested.load()) {
            finish(StopCause::StopRequest, "stopped on request");
            return;
        }
        std::uint32_t from = m_target.pc();
        std::uint32_t spBefore = sp();
        auto call = callLength(from);
        if (!(call && over ? runTo(from + *call, spBefore) : stepOnce())) {
            finish(std::nullopt);
            return;
        }
        std::uint32_t pc = m_target.pc();
        if (range->contains(pc) && pc != range->low) {
            continue;
        }
        auto lineHere = m_symbols.lineRange(pc);
        if (!lineHere) {
            // code without line information: a callee runs until it returns, other code steps on
            if (call && !runTo(from + *call, spBefore)) {
                finish(std::nullopt);
                return;
            }
            continue;
        }
        if (call) {
            auto body = m_symbols.afterPrologue(pc);
            if (body && *body != pc && !runTo(*body, 0)) {
                finish(std::nullopt);
                return;
            }
            finish(StopCause::Step, "step done");
            return;
        }
        if (m_symbols.isStatementStart(pc)) {
            finish(StopCause::Step, "step done");
            return;
        }
        range = lineHere; // returned into the middle of a line: finish that line
    }
    finish(StopCause::Step, "line step ended after " + std::to_string(maxLineStepInstructions) + " instructions");
}

// Length of the call instruction at pc (bl, blx), if it is one.
std::optional<unsigned> RunController::callLength(std::uint32_t pc) const
{
    std::uint8_t bytes[4] = {};
    try {
        m_target.readMemory(pc, bytes, 2);
    } catch (const target::TargetError&) {
        return std::nullopt;
    }
    unsigned first = bytes[0] | bytes[1] << 8;
    if ((first & 0xFF87u) == 0x4780u) { // blx rm
        return 2;
    }
    if ((first & 0xF800u) != 0xF000u) {
        return std::nullopt;
    }
    try {
        m_target.readMemory(pc + 2, bytes + 2, 2);
    } catch (const target::TargetError&) {
        return std::nullopt;
    }
    unsigned second = bytes[2] | bytes[3] << 8;
    if ((second & 0xD000u) == 0xD000u || (second & 0xD000u) == 0xC000u) { // bl, blx immediate
        return 4;
    }
    return std::nullopt;
}

StopCause RunController::causeOf(const target::StopInfo& info) const
{
    using target::StopReason;
    switch (info.reason) {
    case StopReason::None:
        return StopCause::None;
    case StopReason::Reset:
        return StopCause::Reset;
    case StopReason::Breakpoint:
        return StopCause::Breakpoint;
    case StopReason::StepDone:
        return StopCause::Step;
    case StopReason::StopRequest:
        return StopCause::StopRequest;
    case StopReason::RunUntilReached:
        return m_command == Command::Step ? StopCause::Step : StopCause::UntilReached;
    case StopReason::Returned:
        return StopCause::UntilReached;
    case StopReason::InstructionLimit:
        return StopCause::InstructionLimit;
    case StopReason::Fault:
        return StopCause::Fault;
    }
    return StopCause::None;
}

void RunController::clearCause()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_command = Command::None;
    m_cause.reset();
    m_message.clear();
}

CpuStatus RunController::status() const
{
    CpuStatus status;
    status.running = m_busy.load() || m_target.isRunning();
    status.pc = m_target.pc();
    status.cycles = m_target.cycles();
    status.seconds = m_target.simulatedSeconds();
    if (status.running) {
        status.message = "running";
        return status;
    }
    target::StopInfo info = m_target.stopInfo();
    status.fault = info.fault;
    status.address = info.address;
    std::lock_guard<std::mutex> lock(m_mutex);
    status.cause = m_cause ? *m_cause : causeOf(info);
    status.message = m_cause && !m_message.empty() ? m_message : info.message;
    return status;
}

bool RunController::waitUntilStopped(std::chrono::milliseconds timeout) const
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (m_busy.load()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return m_target.waitUntilStopped(std::max(left, std::chrono::milliseconds(0)));
}

} // namespace quillon::services
