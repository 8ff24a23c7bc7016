#pragma once

#include <cstdint>
#include <functional>

namespace quillon::target {

/// How a breakpoint decides to stop.
struct BreakpointOptions {
    bool enabled = true;
    /// 0 or 1: every hit stops; n: every n-th hit stops (the n-th, the 2n-th, ...).
    uint32_t hitCount = 0;
    /// Checked at each pass while enabled; only passes where it holds are hits. Runs on the engine's thread and
    /// may read registers and memory of the target.
    std::function<bool()> condition;
};

/// An execution breakpoint: the core stops before the instruction at its address.
class Breakpoint {
public:
    Breakpoint(uint32_t address, BreakpointOptions options) : m_address(address), m_options(std::move(options)) {}

    uint32_t address() const { return m_address; }
    bool enabled() const { return m_options.enabled; }
    void setEnabled(bool enabled) { m_options.enabled = enabled; }
    uint32_t hitCount() const { return m_options.hitCount; }
    bool hasCondition() const { return static_cast<bool>(m_options.condition); }
    /// Passes counted as hits since the breakpoint was set.
    uint64_t hits() const { return m_hits; }

    /// One pass of the core over the address: true when the target stops. A condition that throws passes its
    /// exception on without counting a hit.
    bool pass();

private:
    uint32_t m_address;
    BreakpointOptions m_options;
    uint64_t m_hits = 0;
};

} // namespace quillon::target
