#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "CCoverageTestResult.h"
#include "CProfilerTestResult.h"
#include "Containers.h"

namespace kestrix {

class CTestReportConfig;
class CTestSpecification;
class IEmitter;

/// The judged outcome of one test: failed expressions, coverage and profiler results, or the
/// exception that ended the run. Judged on construction; writes itself as a YAML or XML report
/// through any emitter.
class CTestResult {
public:
    static const char* const REPORT_VERSION;

    /// A run that ended in an exception with the text `exceptionString`.
    CTestResult(std::shared_ptr<CTestSpecification> testSpec, const std::string& exceptionString);
    /// A run that completed; `expressionResults` holds an empty string for each expression that held.
    CTestResult(std::shared_ptr<CTestSpecification> testSpec, const StrVector& expressionResults,
                const StrCoverageTestResultsMap& coverageResults,
                const StrProfilerTestResultsMap& profilerCodeResults,
                const StrProfilerTestResultsVectorMap& profilerDataResults);

    bool isError() const { return m_isError; }
    bool isExpressionError() const { return m_isExprError; }
    bool isException() const { return m_isException; }
    bool isCodeCoverageError() const { return m_isCoverageError; }
    bool isProfilerCodeError() const { return m_isProfilerCodeError; }
    bool isProfilerDataError() const { return m_isProfilerDataError; }
    std::string getExceptionString() const { return m_exceptionString; }

    /// From the specification; empty without one.
    std::string getTestId() const;
    std::string getFunction() const;
    std::shared_ptr<CTestSpecification> getTestSpecification() const { return m_testSpec; }

    // Each getter replaces its argument with a copy.
    void getExpressionResults(StrVector& results) const;
    void getCoverageResults(StrCoverageTestResultsMap& results) const;
    void getProfilerCodeResults(StrProfilerTestResultsMap& results) const;
    void getProfilerDataResults(StrProfilerTestResultsVectorMap& results) const;
    void getCoverageResultsWithError(StrCoverageTestResultsMap& results) const;
    void getProfilerCodeResultsWithError(StrProfilerTestResultsMap& results) const;
    /// Each variable with a result in error, with all of its results.
    void getProfilerDataResultsWithError(StrProfilerTestResultsVectorMap& results) const;

    /// Appends a pair to the environment part of the report.
    void addEnvironmentInfo(const std::string& key, const std::string& value);

    /// Writes the full report of this test as one root mapping; `reportConfig` may be null.
    void serialize(std::shared_ptr<IEmitter> emitter, std::shared_ptr<CTestReportConfig> reportConfig) const;
    /// Writes the short form: identity, and what is in error.
    void serializeErrorsOnly(std::shared_ptr<IEmitter> emitter, std::shared_ptr<CTestReportConfig> reportConfig) const;

    /// The flags and the exception text, one per line.
    std::string toString() const;

private:
    typedef std::shared_ptr<IEmitter> Emitter;

    typedef std::shared_ptr<CTestReportConfig> ReportConfig;

    void serializeReport(const Emitter& emitter, const ReportConfig& config, bool isErrorsOnly) const;
    void serializeSummary(const Emitter& emitter) const;
    /// The profiler's output file name with the report config's user variables in place.
    std::string resolveOutputFile(const ReportConfig& config) const;
    void serializeAnalyzers(const Emitter& emitter, const std::string& outputFile) const;
    void serializeSpecAndEnvironment(const Emitter& emitter, const ReportConfig& config) const;
    void serializeExpressions(const Emitter& emitter) const;
    void serializeTrace(const Emitter& emitter) const;
    void serializeCoverage(const Emitter& emitter) const;
    void serializeCodeProfiler(const Emitter& emitter, const std::string& outputFile) const;
    void serializeDataProfiler(const Emitter& emitter, const std::string& outputFile) const;
    void serializeOutputFile(const Emitter& emitter, const std::string& outputFile) const;
    void serializeErrors(const Emitter& emitter) const;

    StrVector m_expressionResults;
    StrCoverageTestResultsMap m_coverageResults;
    StrProfilerTestResultsMap m_profilerCodeResults;
    StrProfilerTestResultsVectorMap m_profilerDataResults;
    std::shared_ptr<CTestSpecification> m_testSpec;
    std::vector<std::pair<std::string, std::string>> m_environment;
    bool m_isError = false;
    bool m_isExprError = false;
    bool m_isException = false;
    std::string m_exceptionString;
    bool m_isCoverageError = false;
    bool m_isProfilerCodeError = false;
    bool m_isProfilerDataError = false;
};

} // namespace kestrix
