#pragma once

#include "debuginfo/FrameContext.h"
#include "target/Target.h"

namespace quillon::services {

/// The innermost frame of a stopped target: its core registers and its memory.
class TargetFrame : public debuginfo::FrameContext {
public:
    explicit TargetFrame(const target::Target& target) : m_target(target) {}

    std::optional<std::uint32_t> readRegister(unsigned dwarfRegister) const override;
    bool readMemory(std::uint32_t address, void* buffer, std::size_t length) const override;

private:
    const target::Target& m_target;
};

} // namespace quillon::services
