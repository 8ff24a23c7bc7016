#include "instance/DerivedMemory.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "target/MemoryArea.h"

namespace quillon {

namespace {

using target::MemoryArea;

constexpr std::uint64_t kAddressEnd = std::uint64_t(1) << 32;
constexpr unsigned kRegionShift = 29; // the Cortex-M address map's 512 MiB regions

std::uint64_t pageDown(std::uint64_t address)
{
    return address / DerivedMemory::kPageSize * DerivedMemory::kPageSize;
}

std::uint64_t pageUp(std::uint64_t address)
{
    return std::min(kAddressEnd, pageDown(address + DerivedMemory::kPageSize - 1));
}

unsigned accessOf(const debuginfo::ElfImage::Segment& segment)
{
    return (segment.readable ? MemoryArea::Read : 0u) | (segment.writable ? MemoryArea::Write : 0u)
           | (segment.executable ? MemoryArea::Execute : 0u);
}

} // namespace

std::vector<DerivedMemory::Area>
DerivedMemory::fromImages(const std::vector<const debuginfo::ElfImage*>& images)
{
    std::vector<Range> ranges;
    for (std::size_t i = 0; i < images.size(); ++i) {
        addSegments(ranges, *images[i], i);
    }
    std::uint32_t sp = 0;
    if (initialStackPointer(images, sp)) {
        ranges.push_back(ramBelow(sp, ranges));
    }
    return merge(std::move(ranges));
}

void DerivedMemory::addSegments(std::vector<Range>& ranges, const debuginfo::ElfImage& image,
                                std::size_t index)
{
    const std::string prefix = "download" + std::to_string(index) + ".segment";
    for (std::size_t k = 0; k < image.segments().size(); ++k) {
        const debuginfo::ElfImage::Segment& segment = image.segments()[k];
        const std::string name = prefix + std::to_string(k);
        if (segment.memorySize > 0) {
            ranges.push_back({segment.virtualAddress,
                              std::uint64_t(segment.virtualAddress) + segment.memorySize,
                              accessOf(segment), name});
        }
        // The initial contents of data that runs elsewhere (.data in flash).
        if (!segment.bytes.empty() && segment.physicalAddress != segment.virtualAddress) {
            ranges.push_back({segment.physicalAddress,
                              std::uint64_t(segment.physicalAddress) + segment.bytes.size(),
                              MemoryArea::Read, name + ".load"});
        }
    }
}

bool DerivedMemory::initialStackPointer(const std::vector<const debuginfo::ElfImage*>& images,
                                        std::uint32_t& sp)
{
    for (const debuginfo::ElfImage* image : images) {
        for (const debuginfo::ElfImage::Segment& segment : image->segments()) {
            if (segment.physicalAddress == 0 && segment.bytes.size() >= sizeof sp) {
                std::memcpy(&sp, segment.bytes.data(), sizeof sp); // the target is little-endian
                return sp != 0;
            }
        }
    }
    return false;
}

DerivedMemory::Range DerivedMemory::ramBelow(std::uint32_t sp, const std::vector<Range>& ranges)
{
    // The stack grows down from sp: its first word is at sp - 4.
    const std::uint64_t top = pageUp(sp);
    const std::uint64_t region = std::uint64_t(sp - 1) >> kRegionShift;
    std::uint64_t bottom = top;
    for (const Range& range : ranges) {
        const bool sameRegion = (range.start >> kRegionShift) == region;
        if ((range.access & MemoryArea::Write) && sameRegion && range.start < sp) {
            bottom = std::min(bottom, range.start);
        }
    }
    if (bottom == top) {
        const std::uint64_t regionStart = region << kRegionShift;
        bottom = top - std::min<std::uint64_t>(kDefaultRamSize, top - regionStart);
    }
    return {bottom, top, MemoryArea::Read | MemoryArea::Write | MemoryArea::Execute, "ram"};
}

std::vector<DerivedMemory::Area> DerivedMemory::merge(std::vector<Range> ranges)
{
    for (Range& range : ranges) {
        range.start = pageDown(range.start);
        range.end = pageUp(range.end);
    }
    std::stable_sort(ranges.begin(), ranges.end(),
                     [](const Range& a, const Range& b) { return a.start < b.start; });
    std::vector<Range> merged;
    for (Range& range : ranges) {
        if (!merged.empty() && range.start < merged.back().end) {
            merged.back().end = std::max(merged.back().end, range.end);
            merged.back().access |= range.access;
        } else {
            merged.push_back(std::move(range));
        }
    }
    std::vector<Area> areas;
    for (const Range& range : merged) {
        // An area of the whole 4 GiB does not fit the size field; its last page is left out.
        const std::uint64_t size = std::min<std::uint64_t>(range.end - range.start, kAddressEnd - kPageSize);
        areas.push_back({range.name, std::uint32_t(range.start), std::uint32_t(size), range.access});
    }
    return areas;
}

} // namespace quillon
