#pragma once

#include <cstdint>
#include <map>
#include <optional>

namespace quillon::debuginfo {

/// The caller's frame as the call-frame information restores it.
struct CallerFrame {
    std::uint32_t cfa = 0;           ///< canonical frame address of the callee: the caller's sp
    std::uint32_t returnAddress = 0; ///< as saved, with the Thumb bit
    /// Registers of the caller that could be restored, by DWARF number: sp (= cfa), pc (= the
    /// return address without the Thumb bit) and the callee-saved ones. Registers the callee may
    /// have changed without saving them are missing.
    std::map<unsigned, std::uint32_t> registers;

    /// The caller's pc: where it continues after the call.
    std::uint32_t pc() const { return returnAddress & ~std::uint32_t(1); }
    /// An address inside the calling instruction, for looking up the caller's line, block and
    /// locations (the return address may already belong to the next line).
    std::uint32_t lookupPc() const { return pc() - 1; }
    std::optional<std::uint32_t> reg(unsigned dwarfRegister) const
    {
        auto found = registers.find(dwarfRegister);
        return found == registers.end() ? std::nullopt : std::optional<std::uint32_t>(found->second);
    }
};

} // namespace quillon::debuginfo
