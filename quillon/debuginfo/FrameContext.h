#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace quillon::debuginfo {

/// The registers and memory of one stack frame, as the layers above see the target. Locations and
/// call-frame rules are evaluated over it. Registers go by their DWARF numbers (ARM: 0-15 = r0-r15,
/// 13 sp, 14 lr, 15 pc).
class FrameContext {
public:
    virtual ~FrameContext() = default;

    /// The register's value in this frame; nothing if the frame does not know it (an unwound frame
    /// knows only what the call-frame information restores).
    virtual std::optional<std::uint32_t> readRegister(unsigned dwarfRegister) const = 0;
    /// Reads `length` bytes at `address` into `buffer`; false if any of them cannot be read.
    virtual bool readMemory(std::uint32_t address, void* buffer, std::size_t length) const = 0;
};

} // namespace quillon::debuginfo
