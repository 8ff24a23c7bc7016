#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "target/MemoryArea.h"

namespace quillon::target {

/// The memory areas of a target. Debugger reads and writes go straight to host memory: they check that every
/// byte lies in an area but ignore the access rights, which bind the core only. The layout is fixed once the
/// target is built, so lookups need no lock.
class MemoryMap {
public:
    /// Copies of every area's contents, in the order of `areas()`.
    using Snapshot = std::vector<std::vector<uint8_t>>;

    /// Adds an area; an empty area, a name given twice, or an overlap is a TargetError.
    MemoryArea& add(std::string name, uint32_t start, uint32_t size, unsigned access);

    const std::vector<MemoryArea>& areas() const { return m_areas; }
    /// The area that holds `address`, or null.
    const MemoryArea* find(uint64_t address) const;
    const MemoryArea* findByName(const std::string& name) const;
    /// True when every byte of the range lies in some area.
    bool isMapped(uint64_t address, uint64_t size) const;

    /// Throw a TargetError (BadAddress) that names the first unmapped byte; nothing is copied then.
    void read(uint64_t address, void* out, size_t size) const;
    void write(uint64_t address, const void* data, size_t size);

    Snapshot snapshot() const;
    /// A snapshot of another layout is a TargetError.
    void restore(const Snapshot& snapshot);

private:
    MemoryArea* findMutable(uint64_t address);
    void checkMapped(uint64_t address, uint64_t size) const;

    std::vector<MemoryArea> m_areas;
};

} // namespace quillon::target
