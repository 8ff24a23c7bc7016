#pragma once

#include "expr/Converter.h"
#include "expr/Value.h"

#include "debuginfo/Type.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// Calls target functions by the ARM procedure call standard (base, soft-float): arguments in r0
/// to r3 and on the stack, 64-bit values in an even register pair or 8-aligned on the stack,
/// structures by value (split between registers and stack where they must), a structure of more
/// than 4 bytes returned through a hidden pointer in r0.
class FunctionCaller {
public:
    struct Options {
        /// A call that runs longer ends as a failure.
        std::uint64_t instructionLimit = 100000000;
        /// Where the called function returns to: an address no code has, in a region the core may
        /// execute from (below 0xA0000000; the system and device regions never execute).
        std::uint32_t returnAddress = 0x9FFFFF00;
    };

    /// What setUp() placed: the state the call starts from and where its result will be.
    struct Frame {
        std::uint32_t entry = 0;
        std::uint32_t stackPointer = 0;  ///< sp at the entry; stack arguments start here
        std::uint32_t resultAddress = 0; ///< buffer of a structure returned by hidden pointer; 0 if none
        const debuginfo::Type* returnType = nullptr;
    };

    /// All three must outlive the caller.
    FunctionCaller(const Converter& converter, target::Target& target, Options options);

    const Options& options() const { return m_options; }

    /// Calls the function at `entry` (the Thumb bit is set here) of function type `type`. The core's
    /// registers, its stop (a breakpoint it stopped at is passed over on resume) and the
    /// return-address setting are the same afterwards; what the function wrote to memory and the
    /// cycles it took stay. `stackTop`: the memory below it takes the stack arguments and a returned
    /// structure (default: the current sp). Throws ExprError naming `name` if the call does not
    /// return (fault, breakpoint, instruction limit).
    Value call(std::uint32_t entry, const debuginfo::Type* type, const std::vector<Value>& arguments,
               const std::string& name, std::optional<std::uint32_t> stackTop = std::nullopt);

    /// Writes the registers and stack of a call below `stackTop`: arguments, sp, lr = the return
    /// address and pc = the entry. The caller runs the core and reads the result with returnValue().
    Frame setUp(std::uint32_t entry, const debuginfo::Type* type, const std::vector<Value>& arguments,
                std::uint32_t stackTop, const std::string& name);
    /// The returned value after the core reached the return address; void gives an empty value.
    Value returnValue(const Frame& frame) const;

private:
    struct Placement {
        std::vector<std::uint8_t> bytes;
        int firstRegister = -1; ///< -1: all on the stack
        std::size_t registerBytes = 0;
        std::uint32_t stackOffset = 0;
    };

    std::vector<Value> convertArguments(const debuginfo::Type* type, const std::vector<Value>& arguments,
                                        const std::string& name) const;
    Value promoted(const Value& argument) const;

    const Converter& m_converter;
    target::Target& m_target;
    Options m_options;
};

} // namespace quillon::expr
