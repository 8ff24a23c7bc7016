#pragma once

#include <cstdint>
#include <vector>

#include "debuginfo/Function.h"
#include "expr/Value.h"
#include "target/Target.h"

namespace quillon::services {

/// The procedure call standard as seen from inside a called function (base, soft-float): where its parameters
/// are at its first instruction and how it hands back a return value.
class CallConvention {
public:
    /// The parameters of `function` in order, read at its entry: a word in a core register is that register,
    /// a parameter on the stack that memory; one split over registers (a 64-bit value, a structure) a copy.
    static std::vector<expr::Value> entryParameters(const target::Target& target, const debuginfo::Function& function);

    /// A structure or union of more than 4 bytes comes back in memory that the caller passes in r0.
    static bool returnsInMemory(const debuginfo::Type* type);

    /// Makes the function return at once from its entry with `bytes` (of `type`, null for void) as its value:
    /// r0 (and r1) or the caller's memory, then pc from lr.
    static void returnNow(target::Target& target, const debuginfo::Type* type, const std::vector<std::uint8_t>& bytes);
};

} // namespace quillon::services
