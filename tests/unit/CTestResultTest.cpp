#include <functional>

#include <gtest/gtest.h>

#include "CProfilerArea.h"
#include "CTestCoverageStatistics.h"
#include "CTestResult.h"
#include "CTestSpecification.h"
#include "CYAMLUtil.h"
#include "IllegalArgumentException.h"

using namespace kestrix;

// Queries and text form of the result of one test; the flags are checked in the reports.

namespace {

CProfilerTestResult profilerResult(const MinMaxLimits& hits, DWORD measuredHits)
{
    CProfilerArea area;
    CYAMLUtil::parseYAML(area, "{name: f}");
    area.setHits(hits);
    return CProfilerTestResult(area, CProfilerStatistic(0, 0, 0, 0, 0, measuredHits), true);
}

} // namespace

TEST(CTestResultTest, ExceptionResultAsText)
{
    CTestResult result(CTestSpecification::parseTestSpec("{id: t1, func: [add]}"), "Lost connection!");
    EXPECT_EQ("Lost connection!", result.getExceptionString());
    EXPECT_EQ("CTestResult:\n"
              "  isError: 1\n"
              "  isException: 1\n"
              "  exceptionString: Lost connection!\n"
              "  isExpressionError: 0\n"
              "  isCodeCoverageError: 0\n"
              "  isProfilerCodeError: 0\n"
              "  isProfilerDataError: 0",
              result.toString());
}

TEST(CTestResultTest, ResultsWithErrorReplaceTheArgument)
{
    CTestCoverageStatistics all(nullptr);
    CYAMLUtil::parseYAML(all, "{code: 100}");
    CTestResult result(nullptr, StrVector{"", "x == 1\n    x = 0"},
                       {{"half", CCoverageTestResult(CCoverageTestExpected(all), {8, 4, 0, 0, 0, 0, 0})},
                        {"none", CCoverageTestResult(CCoverageTestExpected(all), CCoverageStatistic())}},
                       {{"f", profilerResult(MinMaxLimits(2, 3), 1)}, {"g", profilerResult(MinMaxLimits(0, 3), 1)}},
                       {{"a", {profilerResult(MinMaxLimits(0, 1), 1), profilerResult(MinMaxLimits(0, 1), 2)}},
                        {"b", {profilerResult(MinMaxLimits(0, 1), 1)}}});

    StrVector expressions{"old"};
    result.getExpressionResults(expressions);
    EXPECT_EQ((StrVector{"", "x == 1\n    x = 0"}), expressions);

    // Nothing in range is no coverage error.
    StrCoverageTestResultsMap coverage{{"stale", CCoverageTestResult()}};
    result.getCoverageResultsWithError(coverage);
    ASSERT_EQ(1u, coverage.size());
    EXPECT_EQ("half", coverage.begin()->first);

    StrProfilerTestResultsMap code{{"stale", CProfilerTestResult()}};
    result.getProfilerCodeResultsWithError(code);
    ASSERT_EQ(1u, code.size());
    EXPECT_EQ("f", code.begin()->first);

    // A variable in error keeps its whole list.
    StrProfilerTestResultsVectorMap data{{"stale", {}}};
    result.getProfilerDataResultsWithError(data);
    ASSERT_EQ(1u, data.size());
    EXPECT_EQ(2u, data["a"].size());
}

TEST(CTestResultTest, NullEmitterIsRefused)
{
    CTestResult result(nullptr, "failed");
    CProfilerTestResult profiler;
    const std::function<void()> calls[] = {
        [&] { result.serialize(nullptr, nullptr); },
        [&] { result.serializeErrorsOnly(nullptr, nullptr); },
        [] { CCoverageTestResult().serialize(nullptr); },
        [] { CCoverageTestResult::serializeCoverageData(nullptr, "k", 0, 0, 0); },
        [&] { profiler.serialize(nullptr); },
        [&] { profiler.serializeErrorsOnly(nullptr); },
        [&] { profiler.serializeProfilerValues(nullptr, {}, true); },
        [] { CProfilerTestResult::serializeParameter(nullptr, "k", CProfilerTestResult::ERR_NONE, {}, 0, true); },
    };
    for (const auto& call : calls) {
        try {
            call();
            ADD_FAILURE() << "no exception";
        } catch (const IllegalArgumentException& e) {
            EXPECT_EQ("Emitter must not be null!", e.getDesc());
        }
    }
}
