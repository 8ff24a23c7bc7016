#include <gtest/gtest.h>

#include "services/CallTracker.h"

namespace quillon::services {
namespace {

using Calls = std::vector<CallTracker::Call>;

constexpr std::uint32_t kF = 0, kG = 1;
constexpr std::uint32_t kFEntry = 0x100, kGEntry = 0x200;
constexpr std::uint32_t kReturn = 0x400, kInsideF = 0x120;
constexpr std::uint32_t kStack = 0x20001000;

class Tracker : public ::testing::Test {
protected:
    void SetUp() override
    {
        tracker.watchEntry(kFEntry, kF);
        tracker.watchEntry(kGEntry, kG);
    }

    CallTracker tracker;
};

TEST_F(Tracker, ACallEndsWhereItReturnsWithItsFrameBack)
{
    ASSERT_EQ(tracker.entriesAt(kFEntry), std::vector<std::uint32_t>{kF});
    EXPECT_TRUE(tracker.entriesAt(kReturn).empty());
    EXPECT_TRUE(tracker.enter(kF, kStack, kReturn | 1u, 10));
    EXPECT_TRUE(tracker.arrive(kInsideF, kStack - 8, 11).empty());
    EXPECT_TRUE(tracker.arrive(kReturn, kStack - 8, 12).empty()) << "the return address, but a frame still below";
    const Calls ended = tracker.arrive(kReturn, kStack, 20);
    ASSERT_EQ(ended.size(), 1u);
    EXPECT_EQ(ended[0].area, kF);
    EXPECT_EQ(ended[0].entry, 10u);
    EXPECT_EQ(ended[0].exit, 20u);
    EXPECT_TRUE(ended[0].isOutermost);
    EXPECT_EQ(tracker.depth(), 0u);
}

TEST_F(Tracker, StackAboveTheFrameEndsTheCallEvenWithoutItsReturnAddress)
{
    tracker.enter(kF, kStack, kReturn, 0);
    EXPECT_EQ(tracker.arrive(0x999, kStack + 16, 5).size(), 1u) << "a jump out, as longjmp does";
}

TEST_F(Tracker, ATailCallEndsWithItsCallerAndRecursionCountsInnerCallsAsNotOutermost)
{
    tracker.enter(kF, kStack, kReturn, 0);
    tracker.enter(kG, kStack, kReturn, 4); // F branches to G with its own frame and return address
    Calls ended = tracker.arrive(kReturn, kStack, 9);
    ASSERT_EQ(ended.size(), 2u);
    EXPECT_EQ(ended[0].area, kG);
    EXPECT_EQ(ended[1].area, kF);

    tracker.enter(kF, kStack, kReturn, 0);
    tracker.enter(kF, kStack - 8, kInsideF, 2);
    ended = tracker.arrive(kInsideF, kStack - 8, 5);
    ASSERT_EQ(ended.size(), 1u);
    EXPECT_FALSE(ended[0].isOutermost);
    ended = tracker.arrive(kReturn, kStack, 7);
    ASSERT_EQ(ended.size(), 1u);
    EXPECT_TRUE(ended[0].isOutermost);
}

TEST_F(Tracker, ABranchBackToTheEntryContinuesTheCall)
{
    EXPECT_TRUE(tracker.enter(kF, kStack, kReturn, 0));
    EXPECT_FALSE(tracker.enter(kF, kStack, kReturn, 3));
    EXPECT_EQ(tracker.depth(), 1u);
    EXPECT_TRUE(tracker.enter(kG, kStack, kReturn, 4)) << "another area at the same frame is a tail call";
    EXPECT_FALSE(tracker.enter(kF, kStack, kReturn, 5)) << "F's call goes on below G's";
}

TEST_F(Tracker, JumpsOfTheDebuggerReturnOrLeaveCalls)
{
    // A stub: stopped at G's entry, the debugger puts the pc at the return address.
    tracker.enter(kF, kStack, kReturn, 0);
    tracker.enter(kG, kStack - 8, kInsideF, 3);
    Calls ended = tracker.jump(kInsideF, kStack - 8, 3);
    ASSERT_EQ(ended.size(), 1u);
    EXPECT_EQ(ended[0].area, kG);
    EXPECT_EQ(ended[0].exit - ended[0].entry, 0u);
    EXPECT_EQ(tracker.depth(), 1u) << "F goes on";

    // A new test at the same frame: the call left behind is forgotten, not counted.
    ended = tracker.jump(kFEntry, kStack, 9);
    EXPECT_TRUE(ended.empty());
    EXPECT_EQ(tracker.depth(), 0u);

    // A call made by the debugger below a call in progress leaves that one alone, and so does a jump inside it.
    tracker.enter(kF, kStack, kReturn, 10);
    EXPECT_TRUE(tracker.jump(kGEntry, kStack - 64, 11).empty());
    EXPECT_EQ(tracker.depth(), 1u);
    EXPECT_TRUE(tracker.jump(kInsideF, kStack, 12).empty());
    EXPECT_EQ(tracker.depth(), 1u);
}

TEST_F(Tracker, OnlyEntriesAndReturnAddressesOfCallsInProgressMatter)
{
    EXPECT_TRUE(tracker.matters(kFEntry));
    EXPECT_FALSE(tracker.matters(kReturn));
    tracker.enter(kF, kStack, kReturn | 1u, 0);
    tracker.enter(kG, kStack - 8, kInsideF, 1);
    EXPECT_TRUE(tracker.matters(kReturn)) << "without the Thumb bit";
    EXPECT_TRUE(tracker.matters(kInsideF));
    tracker.arrive(kInsideF, kStack - 8, 2);
    EXPECT_FALSE(tracker.matters(kInsideF)) << "G returned";
    EXPECT_TRUE(tracker.matters(kReturn));
    tracker.abandonAll();
    EXPECT_FALSE(tracker.matters(kReturn));
}

TEST_F(Tracker, ARoutineExitEndsOnlyThatRoutinesInnermostCall)
{
    tracker.watchExit(0x130, kG);
    ASSERT_TRUE(tracker.hasExits());
    tracker.enter(kF, kStack, kReturn, 0);
    tracker.enter(kG, kStack, kReturn, 0); // both start at one entry
    EXPECT_TRUE(tracker.executed(0x12E, 3).empty());
    const Calls ended = tracker.executed(0x130, 4);
    ASSERT_EQ(ended.size(), 1u);
    EXPECT_EQ(ended[0].area, kG);
    EXPECT_EQ(tracker.depth(), 1u);
    tracker.abandonAll();
    EXPECT_EQ(tracker.depth(), 0u);
}

} // namespace
} // namespace quillon::services
