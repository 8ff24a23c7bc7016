#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace quillon::target {

/// The core registers a debugger sees.
enum class Register { R0, R1, R2, R3, R4, R5, R6, R7, R8, R9, R10, R11, R12, SP, LR, PC, XPSR, MSP, PSP, PRIMASK, CONTROL };

/// Register names: r0 to r12, sp, lr, pc, xpsr, msp, psp, primask, control, and r13 to r15 for sp, lr, pc.
/// Lookup ignores case.
class RegisterTable {
public:
    static std::optional<Register> find(std::string_view name);
    /// The lower-case name (sp, not r13).
    static const char* name(Register reg);
    /// Every register, in the order of the enumeration.
    static const std::vector<Register>& all();
    /// The emulator's identifier of the register.
    static int engineId(Register reg);
};

} // namespace quillon::target
