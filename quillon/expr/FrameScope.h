#pragma once

#include "expr/Scope.h"
#include "expr/TargetFrameContext.h"

#include "debuginfo/CallerFrame.h"
#include "debuginfo/DebugInfo.h"
#include "debuginfo/Location.h"
#include "debuginfo/UnwoundFrameContext.h"

#include <memory>
#include <vector>

namespace quillon::expr {

/// The locals and parameters of the function of one frame of a stopped target: the innermost
/// frame, or a caller found by the call-frame information. Locals of the innermost frame that live
/// in registers are lvalues; those of a caller are values as unwinding restored them.
class FrameScope : public Scope {
public:
    /// Throws ExprError if the frame cannot be reached. Both must outlive the scope.
    FrameScope(const debuginfo::DebugInfo& debug, const target::Target& target, unsigned frame = 0);

    /// The function of the frame; nullptr where the pc has no debug information.
    const debuginfo::Function* function() const { return m_function; }
    /// The pc that locations and blocks are looked up at.
    std::uint32_t pc() const { return m_pc; }

    std::optional<Value> find(const std::string& name) const override;

private:
    Value fromLocation(const debuginfo::Variable& variable, const debuginfo::Location& location) const;
    std::vector<std::uint8_t> pieceBytes(const debuginfo::Location& piece, std::size_t size,
                                         const std::string& name) const;

    const debuginfo::DebugInfo& m_debug;
    TargetFrameContext m_innermost;
    std::vector<std::unique_ptr<debuginfo::CallerFrame>> m_callers;
    std::vector<std::unique_ptr<debuginfo::UnwoundFrameContext>> m_contexts;
    const debuginfo::FrameContext* m_frame = nullptr;
    std::uint32_t m_pc = 0;
    bool m_isInnermost = true;
    const debuginfo::Function* m_function = nullptr;
};

} // namespace quillon::expr
