#include "services/SpanSet.h"

#include <algorithm>

namespace quillon::services {

SpanSet::SpanSet(std::initializer_list<Span> spans)
{
    for (const Span& span : spans) {
        add(span.begin, span.end);
    }
}

void SpanSet::add(std::uint64_t begin, std::uint64_t end)
{
    if (begin >= end) {
        return;
    }
    // The spans that touch or overlap [begin, end) merge with it.
    auto first = std::lower_bound(m_spans.begin(), m_spans.end(), begin,
                                  [](const Span& span, std::uint64_t at) { return span.end < at; });
    auto last = first;
    while (last != m_spans.end() && last->begin <= end) {
        begin = std::min(begin, last->begin);
        end = std::max(end, last->end);
        ++last;
    }
    first = m_spans.erase(first, last);
    m_spans.insert(first, Span{begin, end});
}

void SpanSet::add(const SpanSet& other)
{
    for (const Span& span : other.m_spans) {
        add(span.begin, span.end);
    }
}

void SpanSet::subtract(const SpanSet& other)
{
    std::vector<Span> result;
    auto cut = other.m_spans.begin();
    for (Span span : m_spans) {
        while (cut != other.m_spans.end() && cut->end <= span.begin) {
            ++cut;
        }
        for (auto c = cut; c != other.m_spans.end() && c->begin < span.end; ++c) {
            if (c->begin > span.begin) {
                result.push_back(Span{span.begin, c->begin});
            }
            span.begin = std::max(span.begin, c->end);
        }
        if (span.begin < span.end) {
            result.push_back(span);
        }
    }
    m_spans = std::move(result);
}

void SpanSet::intersect(const SpanSet& other)
{
    std::vector<Span> result;
    auto a = m_spans.begin();
    auto b = other.m_spans.begin();
    while (a != m_spans.end() && b != other.m_spans.end()) {
        const std::uint64_t begin = std::max(a->begin, b->begin);
        const std::uint64_t end = std::min(a->end, b->end);
        if (begin < end) {
            result.push_back(Span{begin, end});
        }
        (a->end < b->end) ? ++a : ++b;
    }
    m_spans = std::move(result);
}

SpanSet SpanSet::intersection(std::uint64_t begin, std::uint64_t end) const
{
    SpanSet result = *this;
    SpanSet window;
    window.add(begin, end);
    result.intersect(window);
    return result;
}

bool SpanSet::contains(std::uint64_t address) const
{
    auto it = std::upper_bound(m_spans.begin(), m_spans.end(), address,
                               [](std::uint64_t at, const Span& span) { return at < span.end; });
    return it != m_spans.end() && it->begin <= address;
}

std::uint64_t SpanSet::size() const
{
    std::uint64_t total = 0;
    for (const Span& span : m_spans) {
        total += span.size();
    }
    return total;
}

} // namespace quillon::services
