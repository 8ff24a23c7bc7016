#include "services/TargetFrame.h"

#include "target/TargetError.h"

namespace quillon::services {

std::optional<std::uint32_t> TargetFrame::readRegister(unsigned dwarfRegister) const
{
    if (dwarfRegister > 15) {
        return std::nullopt;
    }
    auto reg = static_cast<target::Register>(static_cast<unsigned>(target::Register::R0) + dwarfRegister);
    try {
        return m_target.readRegister(reg);
    } catch (const target::TargetError&) {
        return std::nullopt;
    }
}

bool TargetFrame::readMemory(std::uint32_t address, void* buffer, std::size_t length) const
{
    try {
        m_target.readMemory(address, buffer, length);
        return true;
    } catch (const target::TargetError&) {
        return false;
    }
}

} // namespace quillon::services
