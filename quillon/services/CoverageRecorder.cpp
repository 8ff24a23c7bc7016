#include "services/CoverageRecorder.h"

#include <algorithm>

namespace quillon::services {

CoverageRecorder::CoverageRecorder(CoverageMarks& marks, const target::Target& target)
    : m_marks(marks), m_target(target)
{
}

void CoverageRecorder::onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t)
{
    if (!m_recording.load(std::memory_order_relaxed)) {
        return;
    }
    if (m_pendingBranch != nullptr) {
        *m_pendingBranch |= address == m_fallThrough ? CoverageMarks::NotTaken : CoverageMarks::Taken;
        m_pendingBranch = nullptr;
    }
    std::uint8_t* mark = m_marks.at(address);
    if (mark == nullptr) {
        return;
    }
    if (!(*mark & CoverageMarks::Decoded)) {
        decodeAt(address, mark);
    }
    *mark |= CoverageMarks::Executed;
    for (std::uint32_t i = 1; i < size; ++i) {
        if (std::uint8_t* next = m_marks.at(address + i)) {
            *next |= CoverageMarks::Executed;
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
