#include <gtest/gtest.h>

#include "CProfilerArea.h"
#include "CStringStream.h"
#include "CTestResult.h"
#include "CTestSpecification.h"
#include "CYAMLUtil.h"
#include "EmitterFactory.h"

using namespace kestrix;

// Flags, queries and text form of the result of one test.

namespace {

std::shared_ptr<CTestSpecification> spec()
{
    return CTestSpecification::parseTestSpec("{id: t1, func: [add]}");
}

CProfilerTestResult profilerResult(const MinMaxLimits& hits, DWORD measuredHits)
{
    CProfilerArea area;
    CYAMLUtil::parseYAML(area, "{name: f}");
    area.setHits(hits);
    return CProfilerTestResult(area, CProfilerStatistic(0, 0, 0, 0, 0, measuredHits), true);
}

std::string yaml(const CTestResult& result)
{
    auto stream = std::make_shared<CStringStream>();
    auto emitter = EmitterFactory::createYamlEmitter(stream);
    emitter->startStream();
    emitter->startDocument(true);
    result.serialize(emitter, nullptr);
    emitter->endDocument(true);
    emitter->endStream();
    return stream->getString();
}

} // namespace

TEST(CTestResultTest, ExpressionsThatHeldAreNoError)
{
    CTestResult result(spec(), StrVector{"", ""}, {}, {}, {});
    EXPECT_FALSE(result.isError());
    EXPECT_EQ("t1", result.getTestId());

    CTestResult failed(spec(), StrVector{"", "x == 1\n    x = 0"}, {}, {}, {});
    EXPECT_TRUE(failed.isError());
    EXPECT_TRUE(failed.isExpressionError());
    StrVector copy{"old"};
    failed.getExpressionResults(copy);
    EXPECT_EQ((StrVector{"", "x == 1\n    x = 0"}), copy);
}

TEST(CTestResultTest, ExceptionResult)
{
    CTestResult result(spec(), "Lost connection!");
    EXPECT_TRUE(result.isError());
    EXPECT_TRUE(result.isException());
    EXPECT_FALSE(result.isExpressionError());
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

TEST(CTestResultTest, EachAnalyzerSetsItsOwnFlag)
{
    StrCoverageTestResultsMap coverage{
        {"bad", CCoverageTestResult(CCoverageTestExpected(), CCoverageStatistic())},
        {"good", CCoverageTestResult()}};
    CTestResult noCoverageError(spec(), StrVector(), coverage, {}, {});
    EXPECT_FALSE(noCoverageError.isError());
    StrCoverageTestResultsMap coverageWithError{{"stale", CCoverageTestResult()}};
    noCoverageError.getCoverageResultsWithError(coverageWithError);
    EXPECT_TRUE(coverageWithError.empty());

    StrProfilerTestResultsMap code{{"f", profilerResult(MinMaxLimits(2, 3), 1)},
                                   {"g", profilerResult(MinMaxLimits(0, 3), 1)}};
    CTestResult codeError(spec(), StrVector(), {}, code, {});
    EXPECT_TRUE(codeError.isError());
    EXPECT_TRUE(codeError.isProfilerCodeError());
    EXPECT_FALSE(codeError.isProfilerDataError());
    EXPECT_FALSE(codeError.isCodeCoverageError());
    EXPECT_FALSE(codeError.isExpressionError());

    StrProfilerTestResultsMap withError;
    codeError.getProfilerCodeResultsWithError(withError);
    ASSERT_EQ(1u, withError.size());
    EXPECT_EQ("f", withError.begin()->first);
    StrProfilerTestResultsMap all;
    codeError.getProfilerCodeResults(all);
    EXPECT_EQ(2u, all.size());
}

TEST(CTestResultTest, DataResultsWithErrorKeepTheWholeList)
{
    StrProfilerTestResultsVectorMap data{
        {"a", {profilerResult(MinMaxLimits(0, 1), 1), profilerResult(MinMaxLimits(0, 1), 2)}},
        {"b", {profilerResult(MinMaxLimits(0, 1), 1)}}};
    CTestResult result(spec(), StrVector(), {}, {}, data);
    EXPECT_TRUE(result.isProfilerDataError());
    EXPECT_FALSE(result.isProfilerCodeError());

    StrProfilerTestResultsVectorMap withError{{"stale", {}}};
    result.getProfilerDataResultsWithError(withError);
    ASSERT_EQ(1u, withError.size());
    EXPECT_EQ(2u, withError["a"].size());
}

TEST(CTestResultTest, ResultWithoutSpecificationHasEmptyIdentity)
{
    CTestResult result(nullptr, "no test");
    EXPECT_EQ("", result.getTestId());
    EXPECT_EQ("", result.getFunction());
    EXPECT_EQ(nullptr, result.getTestSpecification());
    EXPECT_EQ("testResult:\n"
              "  testId:\n"
              "  function:\n"
              "  description:\n"
              "  tags:\n"
              "  reportVersion: 1.0\n"
              "  isError: true\n"
              "  isExprError: false\n"
              "  isException: true\n"
              "  exceptionStr: no test\n"
              "  isCoverageError: false\n"
              "  isProfilerCodeError: false\n"
              "  isProfilerDataError: false\n",
              yaml(result));
}
