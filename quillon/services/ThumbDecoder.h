#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillon::services {

/// One decoded Thumb instruction, as far as coverage needs it.
struct ThumbInstruction {
    std::uint32_t address = 0;
    std::uint32_t size = 0; ///< 2 or 4
    /// B<cond>, CBZ or CBNZ: where execution goes next depends on a condition.
    bool isConditionalBranch = false;
    /// The branch's destination; 0 for other instructions.
    std::uint32_t target = 0;
};

/// Decodes Cortex-M Thumb code with the Capstone disassembler. A sequence is decoded in order, so that a branch
/// inside an IT block takes the block's condition. Not copyable; one decoder per thread.
class ThumbDecoder {
public:
    /// Throws AnalyzerError (Failed) when the disassembler cannot be opened.
    ThumbDecoder();
    ~ThumbDecoder();
    ThumbDecoder(const ThumbDecoder&) = delete;
    ThumbDecoder& operator=(const ThumbDecoder&) = delete;

    /// The instructions of `size` bytes of code at `address`. Bytes that do not decode are passed over two at a
    /// time (a halfword is the smallest Thumb instruction); they yield no instruction.
    std::vector<ThumbInstruction> decode(const std::uint8_t* code, std::size_t size, std::uint32_t address) const;
    /// The first instruction of the bytes; nothing if they do not decode.
    std::optional<ThumbInstruction> decodeOne(const std::uint8_t* code, std::size_t size, std::uint32_t address) const;

private:
    std::size_t m_handle = 0; ///< Capstone's csh
    void* m_insn = nullptr;   ///< one cs_insn of the handle, reused
};

} // namespace quillon::services
