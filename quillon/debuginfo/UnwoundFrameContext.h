#pragma once

#include "debuginfo/CallerFrame.h"
#include "debuginfo/FrameContext.h"

namespace quillon::debuginfo {

/// The frame of a caller: registers as unwinding restored them, memory of the inner frame's
/// context (the target's). Lets locations of caller frames and further unwinding run over it.
class UnwoundFrameContext : public FrameContext {
public:
    /// Both must outlive this object.
    UnwoundFrameContext(const FrameContext& inner, const CallerFrame& caller) : m_inner(inner), m_caller(caller) {}

    std::optional<std::uint32_t> readRegister(unsigned dwarfRegister) const override
    {
        return m_caller.reg(dwarfRegister);
    }
    bool readMemory(std::uint32_t address, void* buffer, std::size_t length) const override
    {
        return m_inner.readMemory(address, buffer, length);
    }

private:
    const FrameContext& m_inner;
    const CallerFrame& m_caller;
};

} // namespace quillon::debuginfo
