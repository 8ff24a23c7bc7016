#include "services/ThumbDecoder.h"

#include <capstone/capstone.h>

#include "services/AnalyzerError.h"

namespace quillon::services {

namespace {

ThumbInstruction describe(const cs_insn& insn)
{
    ThumbInstruction result;
    result.address = static_cast<std::uint32_t>(insn.address);
    result.size = insn.size;
    const cs_arm& arm = insn.detail->arm;
    const bool isCompareBranch = insn.id == ARM_INS_CBZ || insn.id == ARM_INS_CBNZ;
    const bool isConditional = insn.id == ARM_INS_B && arm.cc != ARM_CC_AL && arm.cc != ARM_CC_INVALID;
    if (isCompareBranch || isConditional) {
        for (std::uint8_t i = 0; i < arm.op_count; ++i) {
            if (arm.operands[i].type == ARM_OP_IMM) {
                result.isConditionalBranch = true;
                result.target = static_cast<std::uint32_t>(arm.operands[i].imm);
            }
        }
    }
    return result;
}

} // namespace

ThumbDecoder::ThumbDecoder()
{
    csh handle = 0;
    if (cs_open(CS_ARCH_ARM, static_cast<cs_mode>(CS_MODE_THUMB | CS_MODE_MCLASS), &handle) != CS_ERR_OK) {
        throw AnalyzerError(AnalyzerError::Kind::Failed, "the Thumb disassembler cannot be opened");
    }
    cs_option(handle, CS_OPT_DETAIL, CS_OPT_ON);
    m_handle = handle;
    m_insn = cs_malloc(handle);
}

ThumbDecoder::~ThumbDecoder()
{
    cs_free(static_cast<cs_insn*>(m_insn), 1);
    csh handle = m_handle;
    cs_close(&handle);
}

std::vector<ThumbInstruction> ThumbDecoder::decode(const std::uint8_t* code, std::size_t size,
                                                   std::uint32_t address) const
{
    std::vector<ThumbInstruction> result;
    auto* insn = static_cast<cs_insn*>(m_insn);
    while (size >= 2) {
        const std::uint8_t* next = code;
        std::size_t left = size;
        std::uint64_t at = address;
        if (cs_disasm_iter(m_handle, &next, &left, &at, insn)) {
            result.push_back(describe(*insn));
        } else {
            next = code + 2; // not an instruction: on to the next halfword
            left = size - 2;
            at = address + 2;
        }
        code = next;
        size = left;
        address = static_cast<std::uint32_t>(at);
    }
    return result;
}

std::optional<ThumbInstruction> ThumbDecoder::decodeOne(const std::uint8_t* code, std::size_t size,
                                                        std::uint32_t address) const
{
    std::uint64_t at = address;
    auto* insn = static_cast<cs_insn*>(m_insn);
    if (size < 2 || !cs_disasm_iter(m_handle, &code, &size, &at, insn)) {
        return std::nullopt;
    }
    return describe(*insn);
}

} // namespace quillon::services
