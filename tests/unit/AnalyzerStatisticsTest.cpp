#include <gtest/gtest.h>

#include "CCoverageStatistic.h"
#include "CProfilerHistory.h"
#include "CProfilerStatistic.h"

using namespace kestrix;

TEST(CCoverageStatistic, ConstructorOrderDiffersFromFields)
{
    // bytes all, bytes executed, branches all, branches executed, taken, not taken, both
    const CCoverageStatistic stat(200, 50, 40, 30, 10, 8, 4);
    EXPECT_EQ("CCoverageStatistic:\n  bytesAll: 200\n  branchesAll: 40\n  bytesExecuted: 50\n"
              "  branchesExecuted: 30\n  branchesTaken: 10\n  branchesNotTaken: 8\n  branchesBoth: 4",
              stat.toString());
    EXPECT_DOUBLE_EQ(0.25, stat.getBytesExecutedRel());
    EXPECT_DOUBLE_EQ(0.75, stat.getBranchesExecutedRel());
    EXPECT_DOUBLE_EQ(0.25, stat.getBranchesTakenRel());
    EXPECT_DOUBLE_EQ(0.2, stat.getBranchesNotTakenRel());
    EXPECT_DOUBLE_EQ(0.1, stat.getBranchesBothRel());
    // Without a denominator a relative value is -1.
    const CCoverageStatistic noBranches(10, 10, 0, 0, 0, 0, 0);
    EXPECT_DOUBLE_EQ(1.0, noBranches.getBytesExecutedRel());
    EXPECT_EQ(-1.0, noBranches.getBranchesExecutedRel());
    EXPECT_EQ(-1.0, noBranches.getBranchesBothRel());
    EXPECT_EQ(-1.0, CCoverageStatistic().getBytesExecutedRel());
}

TEST(CProfilerStatistic, Text)
{
    EXPECT_EQ("CProfilerStatistic:\n  handle: 7\n  numHits: 12\n  value: 2147483649\n  maxTime: 800\n"
              "  minTime: -1\n  totalTime: 9000000000",
              CProfilerStatistic(7, 2147483649u, 9000000000LL, 800, -1, 12).toString());
}

TEST(CProfilerHistory, ActiveIsBit31OfTheValue)
{
    SProfilerHistory record{3, 0x80000005, 123456789012ULL};
    const CProfilerHistory active(record);
    EXPECT_TRUE(active.isActive());
    EXPECT_FALSE(active.isInactive());
    EXPECT_EQ("CProfilerHistory:\n  handle: 3\n  hitTime: 123456789012\n  value: 2147483653\n  isActive: 1\n"
              "  isInactive: 0",
              active.toString());
    record.m_dwValue = 0x7FFFFFFF;
    EXPECT_FALSE(CProfilerHistory(record).isActive());
    EXPECT_FALSE(CProfilerHistory(record).isInactive()) << "no entry reads as inactive";
}
