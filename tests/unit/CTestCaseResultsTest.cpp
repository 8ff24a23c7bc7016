// Judging a run: expression messages and measured analyzer values joined with what the
// specification expects. No target is involved, so the test case has no connection.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "CTestCase.h"
#include "CTestSpecification.h"
#include "IllegalArgumentException.h"

using namespace kestrix;

namespace {

struct Measured {
    CoverageStatisticMap coverage;
    ProfilerStatisticMap code;
    ProfilerStatisticVectorMap data;
};

CTestResult judge(const std::string& specText, const Measured& measured, const StrVector& expressions = {})
{
    std::shared_ptr<CTestSpecification> spec = CTestSpecification::parseTestSpec(specText);
    CTestCase testCase(nullptr);
    return testCase.getTestResults(spec, expressions, spec->getCoverage(), measured.coverage, spec->getProfiler(),
                                   measured.code, measured.data);
}

/// Bytes only: `executed` of `all` bytes, no branches.
CCoverageStatistic bytes(DWORD all, DWORD executed) { return CCoverageStatistic(all, executed, 0, 0, 0, 0, 0); }

CProfilerStatistic hits(DWORD numHits) { return CProfilerStatistic(0, 0, 0, 0, 0, numHits); }

/// A measured data value with its hits and total time.
CProfilerStatistic value(DWORD measuredValue, DWORD numHits, long long totalTime = 0)
{
    return CProfilerStatistic(0, measuredValue, totalTime, 0, 0, numHits);
}

ProfilerStatisticVector measuredOf(const CProfilerTestResult& result)
{
    ProfilerStatisticVector entries;
    result.getMeasuredResults(entries);
    return entries;
}

StrProfilerTestResultsVectorMap dataOf(const CTestResult& result)
{
    StrProfilerTestResultsVectorMap data;
    result.getProfilerDataResults(data);
    return data;
}

} // namespace

TEST(CTestCaseResultsTest, CoverageIsJudgedUnlessItsRunModeIsOff)
{
    // 20 of 40 bytes executed where all of them are expected.
    const struct {
        const char* runMode;
        size_t judged;
    } cases[] = {{"runMode: off, ", 0}, {"runMode: start, ", 1}, {"runMode: resume, ", 1}, {"", 1}};
    for (const auto& c : cases) {
        const CTestResult result = judge(std::string("{func: [add], coverage: {") + c.runMode +
                                             "document: cov1, statistics: [{func: add, code: 100}]}}",
                                         {{{"add", bytes(40, 20)}}, {}, {}});
        StrCoverageTestResultsMap coverage;
        result.getCoverageResults(coverage);
        ASSERT_EQ(c.judged, coverage.size()) << c.runMode;
        EXPECT_EQ(c.judged == 1, result.isCodeCoverageError()) << c.runMode;
        EXPECT_EQ(c.judged == 1, result.isError()) << c.runMode;
        if (c.judged == 1) {
            EXPECT_TRUE(coverage["add"].isBytesExecutedError());
            EXPECT_EQ(20u, coverage["add"].getMeasuredResults().getBytesExecutedAbs());
        }
    }
}

TEST(CTestCaseResultsTest, CoverageOfEachExpectedFunction)
{
    // Percentages become fractions: 50 percent of 40 bytes is met by 20 and missed by 19.
    const CTestResult result =
        judge("{func: [add], coverage: {document: cov1, statistics: ["
              "{func: met, code: 50}, {func: missed, code: 50}, {func: unmeasured, code: 100, branches: 10}]}}",
              {{{"met", bytes(40, 20)}, {"missed", bytes(40, 19)}, {"other", bytes(10, 0)}}, {}, {}});
    StrCoverageTestResultsMap coverage;
    result.getCoverageResults(coverage);
    ASSERT_EQ(3u, coverage.size()) << "a measured function that is not expected is not judged";

    EXPECT_FALSE(coverage["met"].isError());
    EXPECT_DOUBLE_EQ(0.5, coverage["met"].getExpectedResults().getBytesExecutedRel());
    EXPECT_TRUE(coverage["missed"].isBytesExecutedError());

    // No measurement: all zero, and nothing in range is no error.
    const CCoverageStatistic none = coverage["unmeasured"].getMeasuredResults();
    EXPECT_EQ(0u, none.getBytesAll() + none.getBytesExecutedAbs() + none.getBranchesAll());
    EXPECT_FALSE(coverage["unmeasured"].isError());
    EXPECT_FLOAT_EQ(0.1f, static_cast<float>(coverage["unmeasured"].getExpectedResults().getBranchesExecutedRel()));

    StrCoverageTestResultsMap withError;
    result.getCoverageResultsWithError(withError);
    ASSERT_EQ(1u, withError.size());
    EXPECT_EQ("missed", withError.begin()->first);
}

TEST(CTestCaseResultsTest, CodeAreasAreJudgedWhateverTheRunMode)
{
    for (const char* runMode : {"off", "start"}) {
        // "sub" was not measured: one all-zero entry, so 0 hits are below 2.
        const CTestResult result = judge(std::string("{func: [add], profiler: {runMode: ") + runMode +
                                             ", codeAreas: [{name: add, hits: [1, 5]}, {name: sub, hits: [2, 3]}]}}",
                                         {{}, {{"add", hits(3)}, {"mul", hits(9)}}, {}});
        StrProfilerTestResultsMap code;
        result.getProfilerCodeResults(code);
        ASSERT_EQ(2u, code.size()) << runMode;
        EXPECT_EQ(CProfilerTestResult::ERR_NONE, code["add"].validateHits()) << runMode;
        ASSERT_EQ(1u, measuredOf(code["add"]).size()) << runMode;
        EXPECT_EQ(3u, measuredOf(code["add"])[0].getNumHits()) << runMode;

        const ProfilerStatisticVector sub = measuredOf(code["sub"]);
        ASSERT_EQ(1u, sub.size()) << runMode;
        EXPECT_EQ(0u, sub[0].getNumHits());
        EXPECT_EQ(0, sub[0].getTotalTime());
        EXPECT_EQ(CProfilerTestResult::ERR_MIN, code["sub"].validateHits()) << runMode;

        EXPECT_TRUE(result.isProfilerCodeError()) << runMode;
        EXPECT_TRUE(result.isError()) << runMode;
        EXPECT_FALSE(result.isProfilerDataError()) << runMode;
        EXPECT_TRUE(dataOf(result).empty()) << runMode;
    }
}

TEST(CTestCaseResultsTest, DataValuesFindTheirAreas)
{
    // state: 1 has an area of its own; 7 and 9 are collected by the area without a value; 2 never
    // occurred. mode: 4 has no area and is dropped; its expected 3 never occurred.
    const CTestResult result =
        judge("{func: [add], profiler: {dataAreas: ["
              "{name: state, value: 1, hits: [1, 1]}, {name: state, value: 2, hits: [1, 1]},"
              "{name: state, totalTime: [0, 100]}, {name: mode, value: 3}]}}",
              {{}, {}, {{"state", {value(1, 1), value(7, 2, 50), value(9, 1, 500)}}, {"mode", {value(4, 1)}},
                        {"unknown", {value(5, 1)}}}});
    StrProfilerTestResultsVectorMap data = dataOf(result);
    ASSERT_EQ(2u, data.size()) << "a variable that no area names has no results";

    const ProfilerTestResultsVector& state = data["state"];
    ASSERT_EQ(3u, state.size());
    // Measured values in their order first, then the expected value that never occurred.
    EXPECT_TRUE(state[0].isValueSet());
    EXPECT_EQ(1, state[0].getValue());
    ASSERT_EQ(1u, measuredOf(state[0]).size());
    EXPECT_FALSE(state[0].isError());

    EXPECT_FALSE(state[1].isValueSet());
    const ProfilerStatisticVector collected = measuredOf(state[1]);
    ASSERT_EQ(2u, collected.size());
    EXPECT_EQ(7u, collected[0].getValue());
    EXPECT_EQ(9u, collected[1].getValue());
    EXPECT_EQ(CProfilerTestResult::ERR_MAX, state[1].validateTotalTime());

    EXPECT_EQ(2, state[2].getValue());
    EXPECT_TRUE(measuredOf(state[2]).empty());
    EXPECT_EQ(CProfilerTestResult::ERR_MIN, state[2].validateHits());

    const ProfilerTestResultsVector& mode = data["mode"];
    ASSERT_EQ(1u, mode.size());
    EXPECT_EQ(3, mode[0].getValue());
    EXPECT_TRUE(measuredOf(mode[0]).empty());
    EXPECT_FALSE(mode[0].isError()) << "no limits, nothing to miss";

    EXPECT_TRUE(result.isProfilerDataError());
    EXPECT_TRUE(result.isError());
    StrProfilerTestResultsVectorMap withError;
    result.getProfilerDataResultsWithError(withError);
    ASSERT_EQ(1u, withError.size());
    EXPECT_EQ(3u, withError["state"].size());
}

TEST(CTestCaseResultsTest, ExpectedValuesMatchOnTheirLow32Bits)
{
    const struct {
        const char* expected;
        DWORD measured;
        bool isMatch;
    } cases[] = {
        {"0xffffffffffffffff", 0xffffffffu, true}, // -1
        {"0xffffffff", 0xffffffffu, true},
        {"0x100000005", 5, true},
        {"0xfffffffffffffffe", 0xffffffffu, false}, // -2
        {"0x10", 16, true},
        {"0x10", 10, false},
    };
    for (const auto& c : cases) {
        const std::string spec =
            std::string("{func: [add], profiler: {dataAreas: [{name: v, value: ") + c.expected + ", hits: [1, 1]}]}}";
        const CTestResult result = judge(spec, {{}, {}, {{"v", {value(c.measured, 1)}}}});
        StrProfilerTestResultsVectorMap data = dataOf(result);
        ASSERT_EQ(1u, data["v"].size()) << c.expected;
        const CProfilerTestResult& judged = data["v"][0];
        ASSERT_EQ(c.isMatch ? 1u : 0u, measuredOf(judged).size()) << c.expected;
        if (c.isMatch) {
            EXPECT_EQ(c.measured, measuredOf(judged)[0].getValue()) << c.expected;
        }
        EXPECT_EQ(!c.isMatch, result.isProfilerDataError()) << c.expected;
    }
}

TEST(CTestCaseResultsTest, ExpectedValueThatIsNoNumberIsRefused)
{
    // A value text is decimal digits or 0x hexadecimal: -1 is written 0xffffffffffffffff.
    EXPECT_THROW(
        {
            try {
                judge("{func: [add], profiler: {dataAreas: [{name: v, value: -1}]}}", {{}, {}, {{"v", {value(1, 1)}}}});
            } catch (const IllegalArgumentException& e) {
                EXPECT_EQ("Integer expected: -1", e.getDesc());
                throw;
            }
        },
        IllegalArgumentException);
}

TEST(CTestCaseResultsTest, AreasOfTheSameTargetValueShareItsMeasurement)
{
    // -1 and 0xffffffff are one value on the target: the first area takes it, and the second is not
    // reported as a value that never occurred.
    const CTestResult result = judge("{func: [add], profiler: {dataAreas: [{name: v, value: 0xffffffffffffffff, "
                                     "hits: [1, 1]}, {name: v, value: 0xffffffff, hits: [1, 1]}]}}",
                                     {{}, {}, {{"v", {value(0xffffffffu, 1)}}}});
    StrProfilerTestResultsVectorMap data = dataOf(result);
    ASSERT_EQ(1u, data["v"].size());
    EXPECT_EQ(-1, data["v"][0].getValue());
    EXPECT_EQ(1u, measuredOf(data["v"][0]).size());
    EXPECT_FALSE(result.isProfilerDataError());
}

TEST(CTestCaseResultsTest, AreaOfAnUnmeasuredVariable)
{
    // No value was measured at all: the area without a value still gets its result, and an
    // expected hit is missed.
    const CTestResult measuredNothing = judge("{func: [add], profiler: {dataAreas: [{name: v, hits: [1, 2]}]}}", {});
    StrProfilerTestResultsVectorMap data = dataOf(measuredNothing);
    ASSERT_EQ(1u, data["v"].size());
    EXPECT_FALSE(data["v"][0].isValueSet());
    EXPECT_TRUE(measuredOf(data["v"][0]).empty());
    EXPECT_EQ(CProfilerTestResult::ERR_MIN, data["v"][0].validateHits());
    EXPECT_TRUE(measuredNothing.isProfilerDataError());
}

TEST(CTestCaseResultsTest, FlagsOfTheJudgedResult)
{
    const std::string coverage = "coverage: {document: cov1, statistics: [{func: add, code: 100}]}";
    const std::string code = "profiler: {codeAreas: [{name: add, hits: [2, 2]}]}";
    const std::string data = "profiler: {dataAreas: [{name: v, value: 1, hits: [1, 1]}]}";
    const struct {
        std::string section;
        StrVector expressions;
        bool isExpr, isCoverage, isCode, isData;
    } cases[] = {
        {"", {}, false, false, false, false},
        {"", {"", ""}, false, false, false, false},
        {"", {"", "rv == 5\n    rv = 4"}, true, false, false, false},
        {coverage, {""}, false, true, false, false},
        {code, {""}, false, false, true, false},
        {data, {""}, false, false, false, true},
        {coverage, {"x == 1\n    x = 0"}, true, true, false, false},
    };
    // add ran 1 time over 10 of 20 bytes; v was never measured.
    const Measured measured{{{"add", bytes(20, 10)}}, {{"add", hits(1)}}, {}};
    for (const auto& c : cases) {
        const std::string spec = "{id: t1, func: [add]" + (c.section.empty() ? "" : ", " + c.section) + "}";
        const CTestResult result = judge(spec, measured, c.expressions);
        const std::string label = spec + " with " + std::to_string(c.expressions.size()) + " expressions";
        EXPECT_EQ(c.isExpr, result.isExpressionError()) << label;
        EXPECT_EQ(c.isCoverage, result.isCodeCoverageError()) << label;
        EXPECT_EQ(c.isCode, result.isProfilerCodeError()) << label;
        EXPECT_EQ(c.isData, result.isProfilerDataError()) << label;
        EXPECT_EQ(c.isExpr || c.isCoverage || c.isCode || c.isData, result.isError()) << label;
        EXPECT_FALSE(result.isException()) << label;
        StrVector kept;
        result.getExpressionResults(kept);
        EXPECT_EQ(c.expressions, kept) << label;
    }
}
