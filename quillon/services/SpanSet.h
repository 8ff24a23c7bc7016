#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace quillon::services {

/// A set of target addresses kept as sorted, disjoint, non-adjacent half-open spans [begin, end). Ends are 64-bit,
/// so a span may reach the top of the 32-bit address space.
class SpanSet {
public:
    struct Span {
        std::uint64_t begin = 0;
        std::uint64_t end = 0;

        std::uint64_t size() const { return end - begin; }
        bool operator==(const Span& other) const { return begin == other.begin && end == other.end; }
    };

    SpanSet() = default;
    SpanSet(std::initializer_list<Span> spans);

    /// Adds [begin, end); an empty span adds nothing.
    void add(std::uint64_t begin, std::uint64_t end);
    void add(const SpanSet& other);
    /// Removes every address of `other`.
    void subtract(const SpanSet& other);
    /// Keeps the addresses that `other` has too.
    void intersect(const SpanSet& other);
    SpanSet intersection(std::uint64_t begin, std::uint64_t end) const;

    bool contains(std::uint64_t address) const;
    bool empty() const { return m_spans.empty(); }
    const std::vector<Span>& spans() const { return m_spans; }
    std::uint64_t size() const;

    bool operator==(const SpanSet& other) const { return m_spans == other.m_spans; }

private:
    std::vector<Span> m_spans;
};

} // namespace quillon::services
