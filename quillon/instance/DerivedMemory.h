#pragma once

#include <cstdint>
#include <vector>

#include "debuginfo/ElfImage.h"
#include "target/TargetConfig.h"

namespace quillon {

/// The memory of a workspace that names none, derived from its download files: one area per
/// loadable segment (at its run address, and at its load address where that differs), plus the
/// RAM that the initial stack pointer of the vector table at address 0 lies in. Areas are rounded
/// out to the target's page; ranges that then overlap become one area with the rights of both.
///
/// The RAM below the initial stack pointer reaches down to the lowest writable segment in the
/// same 512 MiB region of the Cortex-M address map, or `kDefaultRamSize` if there is none.
class DerivedMemory {
public:
    using Area = target::TargetConfig::Area;

    static constexpr std::uint32_t kPageSize = 0x400;
    static constexpr std::uint32_t kDefaultRamSize = 0x10000;

    /// `images` in download order; area names are "download<i>.segment<k>" and "ram".
    static std::vector<Area> fromImages(const std::vector<const debuginfo::ElfImage*>& images);

private:
    struct Range {
        std::uint64_t start;
        std::uint64_t end;
        unsigned access;
        std::string name;
    };

    static void addSegments(std::vector<Range>& ranges, const debuginfo::ElfImage& image,
                            std::size_t index);
    static bool initialStackPointer(const std::vector<const debuginfo::ElfImage*>& images,
                                    std::uint32_t& sp);
    static Range ramBelow(std::uint32_t sp, const std::vector<Range>& ranges);
    static std::vector<Area> merge(std::vector<Range> ranges);
};

} // namespace quillon
