#include <gtest/gtest.h>

#include "CCoverageTestResult.h"
#include "CProfilerArea.h"
#include "CProfilerTestResult.h"
#include "CStringStream.h"
#include "CTestCoverageStatistics.h"
#include "CYAMLUtil.h"
#include "EmitterFactory.h"

using namespace kestrix;

// Judging of coverage and profiler measurements against the expectations of a test.

namespace {

typedef CProfilerTestResult R;

CCoverageTestResult coverage(const std::string& expectedYaml, const CCoverageStatistic& measured)
{
    CTestCoverageStatistics expected(nullptr);
    CYAMLUtil::parseYAML(expected, expectedYaml);
    return CCoverageTestResult(CCoverageTestExpected(expected), measured);
}

/// What `write` puts into one root mapping, as YAML text.
template <typename Write>
std::string inMapping(Write write)
{
    auto stream = std::make_shared<CStringStream>();
    auto emitter = EmitterFactory::createYamlEmitter(stream);
    emitter->startStream();
    emitter->startDocument(true);
    emitter->mapStart();
    write(emitter);
    emitter->mapEnd();
    emitter->endDocument(true);
    emitter->endStream();
    return stream->getString();
}

CProfilerArea area(const MinMaxLimits& minTime, const MinMaxLimits& hits)
{
    CProfilerArea result;
    result.setAreaName("f");
    result.setMinTime(minTime);
    result.setHits(hits);
    return result;
}

/// An entry with the given min time and hits; other times follow the min time.
CProfilerStatistic entry(long long minTime, DWORD hits, DWORD value = 0)
{
    return CProfilerStatistic(1, value, minTime * hits, minTime, minTime, hits);
}

} // namespace

TEST(CoverageResultTest, BelowExpectedIsErrorEqualOrNothingInRangeIsNot)
{
    // 10 of 20 bytes; 2 of 4 branches executed, 1 taken, 1 not taken, 0 both.
    const CCoverageStatistic measured(20, 10, 4, 2, 1, 1, 0);
    const std::string all = "{code: 100, branches: 100, taken: 100, notTaken: 100, both: 100}";
    const struct {
        std::string expected;
        CCoverageStatistic measured;
        std::string errors; // bytes executed, branches executed, taken, not taken, both
    } rows[] = {
        {"{code: 50, branches: 50, taken: 25, notTaken: 25}", measured, "00000"},
        {"{code: 51}", measured, "10000"},
        {"{taken: 26, both: 1}", measured, "00101"},
        {"{branches: 51, notTaken: 26}", measured, "01010"},
        {all, CCoverageStatistic(), "00000"},
        // Branch items are judged against the branches, not the bytes.
        {all, CCoverageStatistic(8, 8, 0, 0, 0, 0, 0), "00000"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.expected);
        CCoverageTestResult result = coverage(row.expected, row.measured);
        std::string errors;
        for (bool isError : {result.isBytesExecutedError(), result.isBranchesExecutedError(),
                             result.isBranchesTakenError(), result.isBranchesNotTakenError(),
                             result.isBranchesBothError()}) {
            errors += isError ? '1' : '0';
        }
        EXPECT_EQ(row.errors, errors);
        EXPECT_EQ(row.errors != "00000", result.isError());
    }
}

TEST(CoverageResultTest, HugeCountHasNoAbsoluteFigure)
{
    CCoverageTestResult result = coverage("{code: 10}", CCoverageStatistic(4294967295u, 2147483648u, 2,
                                                                           2147483647u, 0, 0, 0));
    const std::string none = "  expected: 0\n  measuredRel: 0\n  measuredAbs: 0\n";
    EXPECT_EQ("isError: false\nisBytesExecutedError: false\nisBranchesExecutedError: false\n"
              "isBranchesTakenError: false\nisBranchesNotTakenError: false\nisBranchesBothError: false\n"
              "bytesAll: 4294967295\nbranchesAll: 2\n"
              "bytesExecuted:\n  expected: 0.1\n  measuredRel: 0.5\n"
              "branchesExecuted:\n  expected: 0\n  measuredRel: 1.07374e+09\n  measuredAbs: 2147483647\n"
              "branchesTaken:\n" + none + "branchesNotTaken:\n" + none + "branchesBoth:\n" + none,
              inMapping([&](const std::shared_ptr<IEmitter>& e) { result.serialize(e); }));
}

TEST(ProfilerResultTest, ValueAgainstLimitsJoinsEarlierStatus)
{
    const struct {
        MinMaxLimits limits;
        long long value;
        R::EResultStatus earlier;
        R::EResultStatus status;
    } rows[] = {
        {MinMaxLimits(-10, -5), -10, R::ERR_NONE, R::ERR_NONE},
        {MinMaxLimits(-10, -5), -5, R::ERR_NONE, R::ERR_NONE},
        {MinMaxLimits(-10, -5), -11, R::ERR_NONE, R::ERR_MIN},
        {MinMaxLimits(-10, -5), 0, R::ERR_NONE, R::ERR_MAX},
        {MinMaxLimits(0, 4294967296LL), 4294967297LL, R::ERR_NONE, R::ERR_MAX},
        {MinMaxLimits(5, 10), 4, R::ERR_MAX, R::ERR_BOTH},
        {MinMaxLimits(5, 10), 11, R::ERR_MIN, R::ERR_BOTH},
        {MinMaxLimits(5, 10), 4, R::ERR_BOTH, R::ERR_BOTH},
        {MinMaxLimits(5, 10), 4, R::ERR_MIN, R::ERR_MIN},
        {MinMaxLimits(5, 10), 7, R::ERR_MIN, R::ERR_MIN},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(row.status, R::validateValue(row.limits, row.value, row.earlier));
    }
}

TEST(ProfilerResultTest, ValidationsFoldOverEntriesAndUndefinedRangesNeverFail)
{
    CProfilerArea limited = area(MinMaxLimits(10, 20), MinMaxLimits(1, 5));
    R result(limited, entry(15, 0, 1), false);
    EXPECT_EQ(R::ERR_NONE, result.validateMinTime());
    EXPECT_EQ(R::ERR_MIN, result.validateHits());
    result.addMeasuredResults(entry(25, 6, 2));
    // In range for the defined limits; its max and total times have none.
    result.addMeasuredResults(entry(12, 3, 3));
    EXPECT_EQ(R::ERR_MAX, result.validateMinTime());
    EXPECT_EQ(R::ERR_BOTH, result.validateHits());
    EXPECT_EQ(R::ERR_NONE, result.validateMaxTime());
    EXPECT_EQ(R::ERR_NONE, result.validateTotalTime());
    EXPECT_TRUE(result.isError());

    ProfilerStatisticVector withError{entry(0, 0)};
    result.getMeasuredResultsWithError(withError);
    ASSERT_EQ(2u, withError.size());
    EXPECT_EQ(1u, withError[0].getValue());
    EXPECT_EQ(2u, withError[1].getValue());
    R(limited, false).getMeasuredResultsWithError(withError);
    EXPECT_TRUE(withError.empty());
}

TEST(ProfilerResultTest, NeverHitAreaFailsOnlyWhenHitsAreExpected)
{
    EXPECT_EQ(R::ERR_MIN, R(area(MinMaxLimits(), MinMaxLimits(1, 1)), true).validateHits());
    EXPECT_EQ(R::ERR_NONE, R(area(MinMaxLimits(), MinMaxLimits(0, 3)), true).validateHits());
    EXPECT_FALSE(R(area(MinMaxLimits(), MinMaxLimits()), true).isError());
    EXPECT_FALSE(R(area(MinMaxLimits(1, 2), MinMaxLimits()), true).isError());
}

TEST(ProfilerResultTest, ErrorsOnlyFormShowsTheStatusOfTheWholeResult)
{
    // This entry is in range, but the result is not.
    EXPECT_EQ("t:\n  expected: [-1, 9]\n  measured: [3, ERR_BOTH]\n",
              inMapping([](const std::shared_ptr<IEmitter>& e) {
                  R::serializeParameter(e, "t", R::ERR_BOTH, MinMaxLimits(-1, 9), 3, false);
              }));
}
