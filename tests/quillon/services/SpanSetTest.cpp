#include <gtest/gtest.h>

#include "services/SpanSet.h"

namespace quillon::services {

std::ostream& operator<<(std::ostream& out, const SpanSet::Span& span)
{
    return out << "[" << span.begin << ", " << span.end << ")";
}

namespace {

using Span = SpanSet::Span;
using Spans = std::vector<Span>;

TEST(SpanSetTest, AddingMergesWhatTouchesOrOverlapsAndKeepsOrder)
{
    struct Case {
        Spans added;
        Spans expected;
    };
    const Case cases[] = {
        {{{10, 20}, {30, 40}}, {{10, 20}, {30, 40}}},
        {{{30, 40}, {10, 20}}, {{10, 20}, {30, 40}}},
        {{{10, 20}, {20, 30}}, {{10, 30}}},
        {{{10, 20}, {15, 25}, {5, 12}}, {{5, 25}}},
        {{{10, 20}, {30, 40}, {50, 60}, {19, 51}}, {{10, 60}}},
        {{{10, 20}, {12, 14}}, {{10, 20}}},
        {{{10, 10}, {7, 3}}, {}},
        {{{0xFFFFFF00, 0x100000000}}, {{0xFFFFFF00, 0x100000000}}},
    };
    for (const Case& c : cases) {
        SpanSet set;
        for (const Span& span : c.added) {
            set.add(span.begin, span.end);
        }
        EXPECT_EQ(set.spans(), c.expected);
    }
}

TEST(SpanSetTest, SubtractingAndIntersectingCutSpans)
{
    const SpanSet base{{10, 20}, {30, 40}};
    struct Case {
        SpanSet other;
        Spans difference;
        Spans intersection;
    };
    const Case cases[] = {
        {{}, {{10, 20}, {30, 40}}, {}},
        {{{12, 14}}, {{10, 12}, {14, 20}, {30, 40}}, {{12, 14}}},
        {{{15, 35}}, {{10, 15}, {35, 40}}, {{15, 20}, {30, 35}}},
        {{{0, 100}}, {}, {{10, 20}, {30, 40}}},
        {{{20, 30}}, {{10, 20}, {30, 40}}, {}},
        {{{10, 11}, {19, 31}, {39, 50}}, {{11, 19}, {31, 39}}, {{10, 11}, {19, 20}, {30, 31}, {39, 40}}},
    };
    for (const Case& c : cases) {
        SpanSet difference = base;
        difference.subtract(c.other);
        EXPECT_EQ(difference.spans(), c.difference);
        SpanSet intersection = base;
        intersection.intersect(c.other);
        EXPECT_EQ(intersection.spans(), c.intersection);
    }
}

TEST(SpanSetTest, ContainsAndSizeCountHalfOpenSpans)
{
    const SpanSet set{{10, 20}, {30, 40}};
    EXPECT_EQ(set.size(), 20u);
    for (std::uint64_t address : {10, 19, 30, 39}) {
        EXPECT_TRUE(set.contains(address)) << address;
    }
    for (std::uint64_t address : {9, 20, 29, 40}) {
        EXPECT_FALSE(set.contains(address)) << address;
    }
    EXPECT_EQ(set.intersection(15, 35).spans(), (Spans{{15, 20}, {30, 35}}));
}

} // namespace
} // namespace quillon::services
