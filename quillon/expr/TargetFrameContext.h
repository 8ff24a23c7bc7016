#pragma once

#include "debuginfo/FrameContext.h"

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// The innermost frame of a stopped target: its core registers and memory.
class TargetFrameContext : public debuginfo::FrameContext {
public:
    explicit TargetFrameContext(const target::Target& target) : m_target(target) {}

    std::optional<std::uint32_t> readRegister(unsigned dwarfRegister) const override;
    bool readMemory(std::uint32_t address, void* buffer, std::size_t length) const override;

private:
    const target::Target& m_target;
};

} // namespace quillon::expr
