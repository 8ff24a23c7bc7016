#include "target/MemoryMap.h"

#include <algorithm>
#include <cstring>

#include "target/Hex.h"
#include "target/TargetError.h"

namespace quillon::target {

MemoryArea& MemoryMap::add(std::string name, uint32_t start, uint32_t size, unsigned access)
{
    if (size == 0) {
        throw TargetError(TargetError::Kind::InvalidArgument, "memory area '" + name + "' has no size");
    }
    if (findByName(name) != nullptr) {
        throw TargetError(TargetError::Kind::InvalidArgument, "memory area '" + name + "' is given twice");
    }
    uint64_t end = uint64_t(start) + size;
    for (const MemoryArea& area : m_areas) {
        if (start < area.end() && area.start() < end) {
            throw TargetError(TargetError::Kind::InvalidArgument,
                              "memory area '" + name + "' overlaps area '" + area.name() + "'");
        }
    }
    m_areas.emplace_back(std::move(name), start, size, access);
    return m_areas.back();
}

const MemoryArea* MemoryMap::find(uint64_t address) const
{
    auto it = std::find_if(m_areas.begin(), m_areas.end(), [&](const MemoryArea& a) { return a.contains(address); });
    return it == m_areas.end() ? nullptr : &*it;
}

MemoryArea* MemoryMap::findMutable(uint64_t address)
{
    return const_cast<MemoryArea*>(find(address));
}

const MemoryArea* MemoryMap::findByName(const std::string& name) const
{
    auto it = std::find_if(m_areas.begin(), m_areas.end(), [&](const MemoryArea& a) { return a.name() == name; });
    return it == m_areas.end() ? nullptr : &*it;
}

bool MemoryMap::isMapped(uint64_t address, uint64_t size) const
{
    uint64_t end = address + size;
    while (address < end) {
        const MemoryArea* area = find(address);
        if (area == nullptr) {
            return false;
        }
        address = area->end();
    }
    return true;
}

void MemoryMap::checkMapped(uint64_t address, uint64_t size) const
{
    uint64_t end = address + size;
    while (address < end) {
        const MemoryArea* area = find(address);
        if (area == nullptr) {
            throw TargetError(TargetError::Kind::BadAddress, "no memory at " + hex32(address));
        }
        address = area->end();
    }
}

void MemoryMap::read(uint64_t address, void* out, size_t size) const
{
    checkMapped(address, size);
    auto* bytes = static_cast<uint8_t*>(out);
    while (size > 0) {
        const MemoryArea* area = find(address);
        size_t n = static_cast<size_t>(std::min<uint64_t>(size, area->end() - address));
        std::memcpy(bytes, area->data() + (address - area->start()), n);
        bytes += n;
        address += n;
        size -= n;
    }
}

void MemoryMap::write(uint64_t address, const void* data, size_t size)
{
    checkMapped(address, size);
    auto* bytes = static_cast<const uint8_t*>(data);
    while (size > 0) {
        MemoryArea* area = findMutable(address);
        size_t n = static_cast<size_t>(std::min<uint64_t>(size, area->end() - address));
        std::memcpy(area->data() + (address - area->start()), bytes, n);
        bytes += n;
        address += n;
        size -= n;
    }
}

MemoryMap::Snapshot MemoryMap::snapshot() const
{
    Snapshot snapshot;
    snapshot.reserve(m_areas.size());
    for (const MemoryArea& area : m_areas) {
        snapshot.emplace_back(area.data(), area.data() + area.size());
    }
    return snapshot;
}

void MemoryMap::restore(const Snapshot& snapshot)
{
    bool fits = snapshot.size() == m_areas.size();
    for (size_t i = 0; fits && i < m_areas.size(); ++i) {
        fits = snapshot[i].size() == m_areas[i].size();
    }
    if (!fits) {
        throw TargetError(TargetError::Kind::InvalidArgument, "the snapshot is of another memory layout");
    }
    for (size_t i = 0; i < m_areas.size(); ++i) {
        std::memcpy(m_areas[i].data(), snapshot[i].data(), snapshot[i].size());
    }
}

} // namespace quillon::target
