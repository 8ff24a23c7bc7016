#pragma once

#include <cstdint>
#include <vector>

namespace quillon::target {

/// What ends a run besides breakpoints, faults and stop().
struct RunOptions {
    /// Stop before the first of these addresses is executed (bit 0 is ignored). An address the run starts at
    /// counts only when it is reached again.
    std::vector<uint32_t> until;
    /// Stop after this many instructions of the run; 0: no limit.
    uint64_t instructionLimit = 0;
};

} // namespace quillon::target
