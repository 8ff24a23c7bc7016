#include "services/TestFrame.h"

#include <algorithm>
#include <string>

#include "services/TestError.h"
#include "target/Hex.h"
#include "target/TargetError.h"

namespace quillon::services {
namespace {

std::uint32_t alignmentOf(const debuginfo::Type* type)
{
    const debuginfo::Type* plain = type->unqualified();
    while (plain->kind() == debuginfo::Type::Kind::Array && plain->target() != nullptr) {
        plain = plain->target()->unqualified();
    }
    if (plain->kind() == debuginfo::Type::Kind::Struct || plain->kind() == debuginfo::Type::Kind::Union) {
        std::uint32_t alignment = 1;
        for (const auto& member : plain->members()) {
            alignment = std::max(alignment, alignmentOf(member.type));
        }
        return alignment;
    }
    return static_cast<std::uint32_t>(std::clamp<std::uint64_t>(plain->size(), 1, 8));
}

bool writable(const target::Target& target, std::uint32_t address)
{
    const target::MemoryArea* area = target.memory().find(address);
    return area != nullptr && (area->access() & target::MemoryArea::Write) != 0;
}

} // namespace

TestFrame::TestFrame(const target::Target& target, std::uint32_t top, const std::vector<const debuginfo::Type*>& types)
{
    std::uint64_t offset = 0;
    std::vector<std::uint64_t> offsets;
    for (const debuginfo::Type* type : types) {
        const std::uint64_t alignment = alignmentOf(type);
        offset = (offset + alignment - 1) / alignment * alignment;
        offsets.push_back(offset);
        offset += std::max<std::uint64_t>(type->size(), 1);
    }
    const std::uint64_t size = (offset + 7) / 8 * 8;
    if (size > top || !target.memory().isMapped(top - size, size) || (size > 0 && !writable(target, top - size))) {
        throw TestError(TestError::Kind::Io, "the test frame of " + std::to_string(size) +
                                                 " bytes does not fit writable memory below the stack top " +
                                                 target::hex32(top));
    }
    m_size = static_cast<std::uint32_t>(size);
    m_base = top - m_size;
    for (std::uint64_t slot : offsets) {
        m_addresses.push_back(m_base + static_cast<std::uint32_t>(slot));
    }
}

std::uint32_t TestFrame::stackTop(const target::Target& target)
{
    try {
        const std::uint32_t initial = target.readWord(0) & ~7u;
        if (initial != 0 && writable(target, initial - 1)) {
            return initial;
        }
    } catch (const target::TargetError&) {
        // No vector table at 0: take the memory's end.
    }
    std::uint64_t end = 0;
    for (const target::MemoryArea& area : target.memory().areas()) {
        if ((area.access() & target::MemoryArea::Write) != 0) {
            end = std::max<std::uint64_t>(end, std::uint64_t(area.start()) + area.size());
        }
    }
    if (end == 0) {
        throw TestError(TestError::Kind::Io, "the target has no writable memory for a test frame");
    }
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(end, 0xFFFFFFF8u) & ~7u);
}

void TestFrame::clear(target::Target& target) const
{
    if (m_size > 0) {
        target.writeMemory(m_base, std::vector<std::uint8_t>(m_size, 0));
    }
}

} // namespace quillon::services
