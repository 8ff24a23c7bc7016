#include "expr/TargetFrameContext.h"

#include "target/Target.h"
#include "target/TargetError.h"

namespace quillon::expr {

std::optional<std::uint32_t> TargetFrameContext::readRegister(unsigned dwarfRegister) const
{
    if (dwarfRegister > 15) {
        return std::nullopt;
    }
    return m_target.readRegister(static_cast<target::Register>(dwarfRegister));
}

bool TargetFrameContext::readMemory(std::uint32_t address, void* buffer, std::size_t length) const
{
    if (!m_target.memory().isMapped(address, length)) {
        return false;
    }
    m_target.readMemory(address, buffer, length);
    return true;
}

} // namespace quillon::expr
