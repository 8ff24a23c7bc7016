#include <gtest/gtest.h>

#include <cstring>

#include "CCoverageStatistic.h"
#include "CProfilerHistory.h"
#include "CProfilerStatistic.h"

using namespace kestrix;

TEST(CCoverageStatistic, ConstructorOrderDiffersFromFields)
{
    // bytes all, bytes executed, branches all, branches executed, taken, not taken, both
    const CCoverageStatistic stat(200, 50, 40, 30, 10, 8, 4);
    EXPECT_EQ(200u, stat.getBytesAll());
    EXPECT_EQ(50u, stat.getBytesExecutedAbs());
    EXPECT_EQ(40u, stat.getBranchesAll());
    EXPECT_EQ(30u, stat.getBranchesExecutedAbs());
    EXPECT_DOUBLE_EQ(0.25, stat.getBytesExecutedRel());
    EXPECT_DOUBLE_EQ(0.75, stat.getBranchesExecutedRel());
    EXPECT_DOUBLE_EQ(0.25, stat.getBranchesTakenRel());
    EXPECT_DOUBLE_EQ(0.2, stat.getBranchesNotTakenRel());
    EXPECT_DOUBLE_EQ(0.1, stat.getBranchesBothRel());
    EXPECT_EQ("CCoverageStatistic:\n  bytesAll: 200\n  branchesAll: 40\n  bytesExecuted: 50\n"
              "  branchesExecuted: 30\n  branchesTaken: 10\n  branchesNotTaken: 8\n  branchesBoth: 4",
              stat.toString());
}

TEST(CCoverageStatistic, RelativeValuesWithoutDenominator)
{
    const CCoverageStatistic noBranches(10, 10, 0, 0, 0, 0, 0);
    EXPECT_DOUBLE_EQ(1.0, noBranches.getBytesExecutedRel());
    EXPECT_EQ(-1.0, noBranches.getBranchesExecutedRel());
    EXPECT_EQ(-1.0, noBranches.getBranchesBothRel());
    EXPECT_EQ(-1.0, CCoverageStatistic().getBytesExecutedRel());
}

TEST(CProfilerStatistic, FilledAsTheInterfaceRecord)
{
    // The interface writes 40-byte records in place: handle, value, total, max, min, hits.
    unsigned char record[40] = {};
    const DWORD handle = 7, value = 0x80000001, hits = 12;
    const long long total = 9000000000LL, maxTime = 800, minTime = -1;
    std::memcpy(record + 0, &handle, 4);
    std::memcpy(record + 4, &value, 4);
    std::memcpy(record + 8, &total, 8);
    std::memcpy(record + 16, &maxTime, 8);
    std::memcpy(record + 24, &minTime, 8);
    std::memcpy(record + 32, &hits, 4);
    CProfilerStatistic stat;
    std::memcpy(static_cast<void*>(&stat), record, sizeof(record));
    EXPECT_EQ("CProfilerStatistic:\n  handle: 7\n  numHits: 12\n  value: 2147483649\n  maxTime: 800\n"
              "  minTime: -1\n  totalTime: 9000000000",
              stat.toString());
    const CProfilerStatistic copy(stat);
    EXPECT_EQ(stat.toString(), copy.toString());
    EXPECT_EQ(CProfilerStatistic(7, 2147483649u, 9000000000LL, 800, -1, 12).toString(), stat.toString());
    EXPECT_EQ("CProfilerStatistic:\n  handle: 0\n  numHits: 0\n  value: 0\n  maxTime: 0\n  minTime: 0\n  totalTime: 0",
              CProfilerStatistic().toString());
}

TEST(CProfilerHistory, ActiveIsBit31OfTheValue)
{
    SProfilerHistory record;
    record.m_dwHandle = 3;
    record.m_dwValue = 0x80000005;
    record.m_qwTime = 123456789012ULL;
    const CProfilerHistory active(record);
    EXPECT_TRUE(active.isActive());
    EXPECT_FALSE(active.isInactive());
    EXPECT_EQ(123456789012ULL, active.getHitTime());
    EXPECT_EQ(0x80000005u, active.getSProfilerHistory().m_dwValue);
    EXPECT_EQ("CProfilerHistory:\n  handle: 3\n  hitTime: 123456789012\n  value: 2147483653\n  isActive: 1\n"
              "  isInactive: 0",
              active.toString());
    record.m_dwValue = 0x7FFFFFFF;
    EXPECT_TRUE(CProfilerHistory(record).isInactive());
}
