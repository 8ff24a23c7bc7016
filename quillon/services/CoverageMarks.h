#pragma once

#include <cstdint>
#include <vector>

#include "services/SpanSet.h"

namespace quillon::services {

/// One byte of marks for each address of the target's executable memory areas: what coverage knows of the byte
/// (static: it is code, it starts a conditional branch) and what a recording saw (executed, branch outcomes).
/// Lookups of an address are O(1); the area of the last lookup is tried first.
class CoverageMarks {
public:
    enum Bits : std::uint8_t {
        Executed = 0x01,    ///< the byte belongs to an instruction that ran
        Taken = 0x02,       ///< on a branch's first byte: it branched at least once
        NotTaken = 0x04,    ///< on a branch's first byte: it went on to the next instruction at least once
        Code = 0x08,        ///< the byte belongs to an instruction
        BranchStart = 0x10, ///< the first byte of a conditional branch
        Decoded = 0x20,     ///< the first byte of an instruction whose kind is known
        Recorded = Executed | Taken | NotTaken,
        Static = Code | BranchStart | Decoded,
    };

    /// Marks of the given areas, all clear.
    explicit CoverageMarks(const SpanSet& areas = {});
    CoverageMarks(const CoverageMarks& other);
    CoverageMarks& operator=(const CoverageMarks& other);

    const SpanSet& areas() const { return m_areaSet; }

    /// The byte of marks of an address; null outside the areas.
    std::uint8_t* at(std::uint32_t address)
    {
        if (address - m_last->start < m_last->bytes.size()) {
            return &m_last->bytes[address - m_last->start];
        }
        return find(address);
    }
    std::uint8_t get(std::uint32_t address) const;

    /// The marks of the area that holds an address, for callers that keep them at hand; all 0 outside.
    struct Block {
        std::uint32_t start = 0;
        std::uint32_t size = 0;
        std::uint8_t* bytes = nullptr;
    };
    Block blockOf(std::uint32_t address);

    /// Clears the given bits everywhere.
    void clear(std::uint8_t bits);
    /// Sets bits on every byte of [begin, end) that lies in the areas.
    void set(std::uint64_t begin, std::uint64_t end, std::uint8_t bits);

    /// The addresses in [begin, end) with any of the bits.
    SpanSet spansWith(std::uint8_t bits, std::uint64_t begin, std::uint64_t end) const;

private:
    struct Area {
        std::uint32_t start = 0;
        std::vector<std::uint8_t> bytes;
    };

    std::uint8_t* find(std::uint32_t address);
    const Area* areaOf(std::uint32_t address) const;

    SpanSet m_areaSet;
    std::vector<Area> m_areas;
    Area m_none;   ///< empty: the fast path of `at` misses it
    Area* m_last;
};

} // namespace quillon::services
