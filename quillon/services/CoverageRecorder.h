#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "services/CoverageMarks.h"
#include "services/ThumbDecoder.h"
#include "target/ExecutionObserver.h"
#include "target/Target.h"

namespace quillon::services {

/// Records coverage into marks from executed instructions: the bytes of each instruction that ran, and for a
/// conditional branch where execution went next: on to the following instruction (not taken) or anywhere else
/// (taken). The outcome of a branch is known at the next instruction, or at `finish` from the stopped target's
/// pc. An instruction that the marks know nothing of is decoded from target memory when it first runs.
/// Instructions come from the target in batches: a call for many of them rather than one each.
///
/// Callbacks come on the engine's thread; `setRecording` may come from any thread. The rest only while the target
/// is stopped.
class CoverageRecorder final : public target::ExecutionObserver {
public:
    CoverageRecorder(CoverageMarks& marks, const target::Target& target);

    void setRecording(bool on) { m_recording.store(on, std::memory_order_relaxed); }
    /// Whether outcomes of branches are recorded.
    void setBranches(bool on) { m_branches = on; }
    /// Settles a branch that was the last instruction, by the pc the target stopped at.
    void finish(std::optional<std::uint32_t> pc);

    bool takesBatches() const override { return true; }
    void onInstructions(const Executed* instructions, std::size_t count, std::uint64_t cycle) override;
    /// One instruction, for a caller that has them one at a time.
    void onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t cycle) override;

private:
    /// One executed instruction, recording on.
    void instruction(std::uint32_t address, std::uint32_t size);
    /// What the fast path of onInstruction leaves: the first run of an instruction, or a branch to follow.
    void record(std::uint32_t address, std::uint32_t size, std::uint8_t* mark);
    /// The marks of an address outside the cached area; caches the area that holds it.
    std::uint8_t* lookUp(std::uint32_t address);
    void decodeAt(std::uint32_t address, std::uint8_t* mark);

    CoverageMarks& m_marks;
    const target::Target& m_target;
    ThumbDecoder m_decoder;
    std::atomic<bool> m_recording{false};
    bool m_branches = true;
    std::uint32_t m_areaStart = 0; ///< the area of the last lookup: its start, size and marks
    std::uint32_t m_areaSize = 0;
    std::uint8_t* m_areaBytes = nullptr;
    std::uint8_t* m_pendingBranch = nullptr; ///< marks of a branch whose outcome the next instruction tells
    std::uint32_t m_fallThrough = 0;
};

} // namespace quillon::services
