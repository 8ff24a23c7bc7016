#pragma once

#include <cstdint>

namespace quillon::services {

/// What coverage counts over some addresses. Bytes are those of instructions; branches are the conditional
/// branches (B<cond>, CBZ, CBNZ); of the executed ones, each went only one way (taken, notTaken) or both.
struct CoverageCounts {
    std::uint32_t bytes = 0;
    std::uint32_t bytesExecuted = 0;
    std::uint32_t branches = 0;
    std::uint32_t branchesExecuted = 0;
    std::uint32_t taken = 0;
    std::uint32_t notTaken = 0;
    std::uint32_t both = 0;

    /// The count of a statistic's number: 1 bytes, 2 bytes executed, 3 branches, 4 branches executed, 5 taken
    /// only, 6 not taken only, 7 both ways; 0 for another number.
    std::uint32_t byNumber(std::uint32_t number) const
    {
        switch (number) {
        case 1: return bytes;
        case 2: return bytesExecuted;
        case 3: return branches;
        case 4: return branchesExecuted;
        case 5: return taken;
        case 6: return notTaken;
        case 7: return both;
        default: return 0;
        }
    }

    bool operator==(const CoverageCounts& other) const
    {
        return bytes == other.bytes && bytesExecuted == other.bytesExecuted && branches == other.branches
               && branchesExecuted == other.branchesExecuted && taken == other.taken && notTaken == other.notTaken
               && both == other.both;
    }

    CoverageCounts& operator+=(const CoverageCounts& other)
    {
        bytes += other.bytes;
        bytesExecuted += other.bytesExecuted;
        branches += other.branches;
        branchesExecuted += other.branchesExecuted;
        taken += other.taken;
        notTaken += other.notTaken;
        both += other.both;
        return *this;
    }
};

} // namespace quillon::services
