#pragma once

#include "debuginfo/FrameContext.h"
#include "debuginfo/Location.h"
#include "debuginfo/LocationOp.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace quillon::debuginfo {

/// Runs DWARF expressions over a frame (a stack machine of 32-bit values, the ARM address size).
/// Throws DebugInfoError for an operation it does not support, a register the frame does not
/// know, memory it cannot read; entry values (DW_OP_entry_value) make the location optimized out.
class LocationEvaluator {
public:
    /// Supplies a frame value on demand: the frame base (DW_OP_fbreg) or the CFA (DW_OP_call_frame_cfa).
    using Provider = std::function<std::uint32_t()>;

    LocationEvaluator(const FrameContext& frame, Provider frameBase, Provider cfa);

    /// Evaluates a location description.
    Location locate(const LocationExpression& expression) const;
    /// Evaluates a DWARF expression to its value (the top of the stack), as CFA rules are.
    std::uint32_t value(const LocationExpression& expression) const;

private:
    class Machine;

    const FrameContext& m_frame;
    Provider m_frameBase;
    Provider m_cfa;
};

} // namespace quillon::debuginfo
