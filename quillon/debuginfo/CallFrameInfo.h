#pragma once

#include "debuginfo/CallerFrame.h"
#include "debuginfo/FrameContext.h"

#include <cstdint>
#include <mutex>
#include <optional>

typedef struct Dwarf Dwarf;
typedef struct Dwarf_CFI_s Dwarf_CFI;

namespace quillon::debuginfo {

/// Call-frame information of .debug_frame (else .eh_frame) through libdw: the CFA of a frame and
/// its caller's registers. libdw caches frame state lazily and is not thread-safe, so calls are
/// serialized here.
class CallFrameInfo {
public:
    /// `dwarf` must outlive this object.
    explicit CallFrameInfo(Dwarf* dwarf);
    ~CallFrameInfo();
    CallFrameInfo(const CallFrameInfo&) = delete;
    CallFrameInfo& operator=(const CallFrameInfo&) = delete;

    bool isAvailable() const { return m_cfi != nullptr; }

    /// `pc` is where the frame stands: the pc of the innermost frame, CallerFrame::lookupPc() of
    /// a caller frame.
    /// The canonical frame address of the frame stopped at pc; nothing where no CFI covers pc.
    /// Throws DebugInfoError when its rule needs what the frame cannot give.
    std::optional<std::uint32_t> cfa(std::uint32_t pc, const FrameContext& frame) const;
    /// The caller of the frame stopped at pc (ARM core registers r0-r15); nothing where no CFI
    /// covers pc or the return address cannot be restored (the outermost frame).
    std::optional<CallerFrame> unwind(std::uint32_t pc, const FrameContext& frame) const;

private:
    struct Rules;

    std::optional<Rules> rulesAt(std::uint32_t pc) const;

    Dwarf_CFI* m_cfi = nullptr;
    bool m_ownsCfi = false; ///< .eh_frame CFI is ours to end; .debug_frame CFI belongs to the Dwarf
    mutable std::mutex m_mutex;
};

} // namespace quillon::debuginfo
