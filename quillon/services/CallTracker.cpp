#include "services/CallTracker.h"

namespace quillon::services {

void CallTracker::watchEntry(std::uint32_t address, std::uint32_t area)
{
    m_entries.emplace(address & ~1u, area);
    m_entryAddresses.insert(address & ~1u);
}

void CallTracker::watchExit(std::uint32_t address, std::uint32_t area)
{
    m_exits.emplace(address & ~1u, area);
}

std::vector<std::uint32_t> CallTracker::entriesAt(std::uint32_t pc) const
{
    std::vector<std::uint32_t> areas;
    const auto range = m_entries.equal_range(pc);
    for (auto it = range.first; it != range.second; ++it) {
        areas.push_back(it->second);
    }
    return areas;
}

std::vector<CallTracker::Call> CallTracker::arrive(std::uint32_t pc, std::uint32_t sp, std::uint64_t now)
{
    return popReturns(pc, sp, now, true);
}

std::vector<CallTracker::Call> CallTracker::jump(std::uint32_t pc, std::uint32_t sp, std::uint64_t now)
{
    std::vector<Call> ended = popReturns(pc, sp, now, false);
    if (m_entryAddresses.count(pc) != 0) {
        while (!m_frames.empty() && m_frames.back().sp <= sp) {
            drop();
        }
    }
    return ended;
}

std::vector<CallTracker::Call> CallTracker::popReturns(std::uint32_t pc, std::uint32_t sp, std::uint64_t now,
                                                       bool withJumpsOut)
{
    std::vector<Call> ended;
    while (!m_frames.empty()) {
        const Frame& top = m_frames.back();
        const bool returned = pc == top.returnAddress && sp >= top.sp;
        const bool jumpedOut = withJumpsOut && sp > top.sp;
        if (!returned && !jumpedOut) {
            break;
        }
        ended.push_back(pop(now));
    }
    return ended;
}

bool CallTracker::enter(std::uint32_t area, std::uint32_t sp, std::uint32_t returnAddress, std::uint64_t now)
{
    returnAddress &= ~1u;
    // A frame below the new one belongs to a call that was left without the tracker seeing it.
    while (!m_frames.empty() && m_frames.back().sp < sp) {
        drop();
    }
    // Calls on top with this very frame and return address: the area's own call goes on.
    for (auto it = m_frames.rbegin(); it != m_frames.rend() && it->sp == sp && it->returnAddress == returnAddress;
         ++it) {
        if (it->area == area) {
            return false;
        }
    }
    m_frames.push_back(Frame{area, returnAddress, sp, now});
    ++m_inProgress[area];
    ++m_returnCounts[returnAddress];
    return true;
}

std::vector<CallTracker::Call> CallTracker::executed(std::uint32_t address, std::uint64_t now)
{
    std::vector<Call> ended;
    const auto range = m_exits.equal_range(address);
    for (auto exit = range.first; exit != range.second; ++exit) {
        for (std::size_t i = m_frames.size(); i > 0; --i) {
            if (m_frames[i - 1].area == exit->second) {
                ended.push_back(remove(i - 1, now));
                break;
            }
        }
    }
    return ended;
}

void CallTracker::abandonAll()
{
    m_frames.clear();
    m_inProgress.clear();
    m_returnCounts.clear();
}

CallTracker::Call CallTracker::pop(std::uint64_t now)
{
    return remove(m_frames.size() - 1, now);
}

CallTracker::Call CallTracker::remove(std::size_t index, std::uint64_t now)
{
    const Frame frame = m_frames[index];
    m_frames.erase(m_frames.begin() + static_cast<std::ptrdiff_t>(index));
    forget(frame);
    return Call{frame.area, frame.entry, now, m_inProgress.count(frame.area) == 0};
}

void CallTracker::drop()
{
    const Frame frame = m_frames.back();
    m_frames.pop_back();
    forget(frame);
}

void CallTracker::forget(const Frame& frame)
{
    const auto count = m_inProgress.find(frame.area);
    if (count != m_inProgress.end() && --count->second == 0) {
        m_inProgress.erase(count);
    }
    const auto returns = m_returnCounts.find(frame.returnAddress);
    if (returns != m_returnCounts.end() && --returns->second == 0) {
        m_returnCounts.erase(returns);
    }
}

} // namespace quillon::services
