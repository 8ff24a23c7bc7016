#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quillon::services {

/// Follows the calls of code areas through the stack pointer and return addresses, as the core executes:
/// a call begins where control arrives at the entry of an area, and takes the link register as its return
/// address and the stack pointer as its frame; it ends where control arrives at that return address with the
/// stack back up to the frame, or once the stack rises above the frame (a jump out of it). So a tail call, which
/// leaves with the caller's frame and return address, ends together with its caller, and a stub that returns
/// at once ends its call when the debugger puts the pc at the return address. Recursive calls are calls of
/// their own; a branch back to the entry of a call on top (a loop, or a call of itself by a jump) is not. Areas
/// may share an entry: each has its call.
class CallTracker {
public:
    struct Call {
        std::uint32_t area = 0;
        std::uint64_t entry = 0;
        std::uint64_t exit = 0;
        /// No other call of the same area was in progress below it.
        bool isOutermost = true;
    };

    /// Calls begin where control arrives at `address`.
    void watchEntry(std::uint32_t address, std::uint32_t area);
    /// The innermost call of `area` ends once the instruction at `address` ran.
    void watchExit(std::uint32_t address, std::uint32_t area);
    bool hasExits() const { return !m_exits.empty(); }

    /// Control at `pc` may begin or end a call: it is an entry or the return address of a call in progress.
    bool matters(std::uint32_t pc) const { return m_entryAddresses.count(pc) != 0 || m_returnCounts.count(pc) != 0; }
    bool isExit(std::uint32_t address) const { return m_exits.count(address) != 0; }
    /// The areas whose entry is at `pc`, in the order they were watched.
    std::vector<std::uint32_t> entriesAt(std::uint32_t pc) const;
    /// The core brought control to `pc` with the stack pointer `sp` at time `now`: the calls that this returns
    /// from, or whose frames the stack rose above, end.
    std::vector<Call> arrive(std::uint32_t pc, std::uint32_t sp, std::uint64_t now);
    /// The debugger put control at `pc` with `sp`: the calls that this returns from end; at an entry, a new call
    /// begins, and those with a frame at or below `sp` were left and are forgotten.
    std::vector<Call> jump(std::uint32_t pc, std::uint32_t sp, std::uint64_t now);
    /// A call of `area` from `returnAddress` with the frame `sp` begins at `now`; false when it continues the
    /// call on top.
    bool enter(std::uint32_t area, std::uint32_t sp, std::uint32_t returnAddress, std::uint64_t now);
    /// The instruction at `address` ran: if it is the exit of a routine, that routine's innermost call ends at
    /// `now`.
    std::vector<Call> executed(std::uint32_t address, std::uint64_t now);

    /// Forgets every call in progress (a reset).
    void abandonAll();
    std::size_t depth() const { return m_frames.size(); }

private:
    struct Frame {
        std::uint32_t area;
        std::uint32_t returnAddress;
        std::uint32_t sp;
        std::uint64_t entry;
    };

    std::vector<Call> popReturns(std::uint32_t pc, std::uint32_t sp, std::uint64_t now, bool withJumpsOut);
    Call pop(std::uint64_t now);
    Call remove(std::size_t index, std::uint64_t now);
    void forget(const Frame& frame);
    void drop();

    std::multimap<std::uint32_t, std::uint32_t> m_entries;
    std::unordered_set<std::uint32_t> m_entryAddresses;
    std::unordered_map<std::uint32_t, std::size_t> m_returnCounts; ///< calls in progress by return address
    std::multimap<std::uint32_t, std::uint32_t> m_exits;
    std::vector<Frame> m_frames;
    std::map<std::uint32_t, std::size_t> m_inProgress; ///< calls of each area on the stack
};

} // namespace quillon::services
