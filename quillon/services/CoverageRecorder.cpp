#include "services/CoverageRecorder.h"

#include <algorithm>

namespace quillon::services {

CoverageRecorder::CoverageRecorder(CoverageMarks& marks, const target::Target& target)
    : m_marks(marks), m_target(target)
{
}

void CoverageRecorder::onInstructions(const Executed* instructions, std::size_t count, std::uint64_t)
{
    if (!m_recording.load(std::memory_order_relaxed)) {
        return;
    }
    constexpr auto known = CoverageMarks::Executed | CoverageMarks::Decoded;
    constexpr auto settled = known | CoverageMarks::Taken | CoverageMarks::NotTaken;
    for (std::size_t i = 0; i < count; ++i) {
        // Most instructions ran before with nothing left to tell, and no branch waits for them.
        const std::uint32_t offset = instructions[i].address - m_areaStart;
        if (m_pendingBranch == nullptr && offset < m_areaSize) {
            const std::uint8_t bits = m_areaBytes[offset];
            if ((bits & (known | CoverageMarks::BranchStart)) == known || (bits & settled) == settled) {
                continue;
            }
        }
        instruction(instructions[i].address, instructions[i].size);
    }
}

void CoverageRecorder::onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t)
{
    if (m_recording.load(std::memory_order_relaxed)) {
        instruction(address, size);
    }
}

void CoverageRecorder::instruction(std::uint32_t address, std::uint32_t size)
{
    if (m_pendingBranch != nullptr) {
        *m_pendingBranch |= address == m_fallThrough ? CoverageMarks::NotTaken : CoverageMarks::Taken;
        m_pendingBranch = nullptr;
    }
    std::uint8_t* mark = address - m_areaStart < m_areaSize ? m_areaBytes + (address - m_areaStart) : lookUp(address);
    if (mark == nullptr) {
        return;
    }
    // Most instructions have run before and have nothing left to tell: a plain one, or a branch whose outcomes are
    // both known or not asked for. A branch still to follow only waits for the next instruction.
    constexpr auto known = CoverageMarks::Executed | CoverageMarks::Decoded;
    constexpr auto settled = known | CoverageMarks::Taken | CoverageMarks::NotTaken;
    const std::uint8_t bits = *mark;
    if ((bits & (known | CoverageMarks::BranchStart)) == known || (bits & settled) == settled
        || (!m_branches && (bits & known) == known)) {
        return;
    }
    if ((bits & known) == known) {
        m_pendingBranch = mark;
        m_fallThrough = address + size;
        return;
    }
    record(address, size, mark);
}

std::uint8_t* CoverageRecorder::lookUp(std::uint32_t address)
{
    std::uint8_t* mark = m_marks.at(address);
    if (mark != nullptr) {
        const CoverageMarks::Block block = m_marks.blockOf(address);
        m_areaStart = block.start;
        m_areaSize = block.size;
        m_areaBytes = block.bytes;
    }
    return mark;
}

void CoverageRecorder::record(std::uint32_t address, std::uint32_t size, std::uint8_t* mark)
{
    if (!(*mark & CoverageMarks::Decoded)) {
        decodeAt(address, mark);
    }
    if (!(*mark & CoverageMarks::Executed)) {
        for (std::uint32_t i = 0; i < size; ++i) {
            if (std::uint8_t* byte = m_marks.at(address + i)) {
                *byte |= CoverageMarks::Executed;
            }
        }
    }
    if ((*mark & CoverageMarks::BranchStart) && m_branches) {
        m_pendingBranch = mark;
        m_fallThrough = address + size;
    }
}

void CoverageRecorder::finish(std::optional<std::uint32_t> pc)
{
    if (m_pendingBranch != nullptr && pc) {
        *m_pendingBranch |= *pc == m_fallThrough ? CoverageMarks::NotTaken : CoverageMarks::Taken;
    }
    m_pendingBranch = nullptr;
}

void CoverageRecorder::decodeAt(std::uint32_t address, std::uint8_t* mark)
{
    std::uint8_t code[4] = {};
    std::size_t size = 4;
    try {
        m_target.readMemory(address, code, size);
    } catch (...) {
        size = 2; // the last halfword of an area
        try {
            m_target.readMemory(address, code, size);
        } catch (...) {
            return;
        }
    }
    const std::optional<ThumbInstruction> instruction = m_decoder.decodeOne(code, size, address);
    *mark |= CoverageMarks::Decoded;
    if (!instruction) {
        return;
    }
    m_marks.set(address, std::uint64_t(address) + instruction->size, CoverageMarks::Code);
    if (instruction->isConditionalBranch) {
        *m_marks.at(address) |= CoverageMarks::BranchStart;
    }
}

} // namespace quillon::services
