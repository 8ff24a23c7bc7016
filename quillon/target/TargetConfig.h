#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillon::target {

/// What a target is made of: the core, its clock and its memory.
struct TargetConfig {
    struct Area {
        std::string name;
        uint32_t start = 0;
        /// Start and size must be multiples of 1 KiB, the emulator's page.
        uint32_t size = 0;
        /// MemoryArea::Access bits.
        unsigned access = 0;
    };

    std::string cpu = "cortex-m3";
    /// Hz: simulated time is cycles / clock.
    uint64_t clockHz = 16000000;
    std::vector<Area> memory;
};

} // namespace quillon::target
