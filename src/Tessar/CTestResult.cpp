#include "CTestResult.h"

#include <algorithm>
#include <sstream>

#include "CTestReportConfig.h"
#include "CTestSpecification.h"
#include "CUtil.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IllegalArgumentException.h"

namespace kestrix {

const char* const CTestResult::REPORT_VERSION = "1.0";

namespace {

bool isInError(const CCoverageTestResult& result) { return result.isError(); }
bool isInError(const CProfilerTestResult& result) { return result.isError(); }
bool isInError(const ProfilerTestResultsVector& results)
{
    return std::any_of(results.begin(), results.end(), [](const CProfilerTestResult& r) { return r.isError(); });
}

template <typename Map>
bool anyInError(const Map& results)
{
    return std::any_of(results.begin(), results.end(), [](const auto& entry) { return isInError(entry.second); });
}

template <typename Map>
void copyInError(const Map& from, Map& to)
{
    to.clear();
    for (const auto& entry : from) {
        if (isInError(entry.second)) {
            to.insert(entry);
        }
    }
}

/// Writes a sequence with one mapping per result, or per result in error: the pair `nameKey`
/// with the result's name, then what `writeBody` writes for it.
template <typename Map, typename Body>
void writeNamedResults(const std::shared_ptr<IEmitter>& emitter, const Map& results, const char* nameKey,
                       bool isErrorsOnly, Body writeBody)
{
    emitter->sequenceStart();
    for (const auto& entry : results) {
        if (!isErrorsOnly || isInError(entry.second)) {
            emitter->mapStart();
            emitter->writeMappingPair(nameKey, entry.first);
            writeBody(entry.second);
            emitter->mapEnd();
        }
    }
    emitter->sequenceEnd();
}

/// The "values" of one variable of the data profiler: all results, or those in error.
void writeDataValues(const std::shared_ptr<IEmitter>& emitter, const ProfilerTestResultsVector& results,
                     bool isErrorsOnly)
{
    emitter->write("values");
    emitter->sequenceStart();
    for (const auto& result : results) {
        if (isErrorsOnly && !result.isError()) {
            continue;
        }
        emitter->mapStart();
        if (isErrorsOnly) {
            result.serializeErrorsOnly(emitter);
        } else {
            result.serialize(emitter);
        }
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
}

/// Writes "document" and, if set, "exportFile" of an analyzer section under "files".
void writeDocumentFiles(const std::shared_ptr<IEmitter>& emitter, const std::string& document,
                        const std::string& exportFile)
{
    emitter->write("files");
    emitter->mapStart();
    emitter->writeMappingPair("document", document);
    if (!exportFile.empty()) {
        emitter->writeMappingPair("exportFile", exportFile);
    }
    emitter->mapEnd();
}

// The five coverage items, for the short form, which names only those in error.
const struct {
    const char* key;
    bool (CCoverageTestResult::*isError)() const;
    double (CCoverageTestExpected::*expected)() const;
    double (CCoverageStatistic::*measured)() const;
} COVERAGE_ITEMS[] = {
    {"bytesExecuted", &CCoverageTestResult::isBytesExecutedError, &CCoverageTestExpected::getBytesExecutedRel,
     &CCoverageStatistic::getBytesExecutedRel},
    {"branchesExecuted", &CCoverageTestResult::isBranchesExecutedError,
     &CCoverageTestExpected::getBranchesExecutedRel, &CCoverageStatistic::getBranchesExecutedRel},
    {"branchesTaken", &CCoverageTestResult::isBranchesTakenError, &CCoverageTestExpected::getBranchesTakenRel,
     &CCoverageStatistic::getBranchesTakenRel},
    {"branchesNotTaken", &CCoverageTestResult::isBranchesNotTakenError,
     &CCoverageTestExpected::getBranchesNotTakenRel, &CCoverageStatistic::getBranchesNotTakenRel},
    {"branchesBoth", &CCoverageTestResult::isBranchesBothError, &CCoverageTestExpected::getBranchesBothRel,
     &CCoverageStatistic::getBranchesBothRel},
};

void writeCoverageItemsInError(const std::shared_ptr<IEmitter>& emitter, const CCoverageTestResult& result)
{
    CCoverageTestExpected expected = result.getExpectedResults();
    CCoverageStatistic measured = result.getMeasuredResults();
    for (const auto& item : COVERAGE_ITEMS) {
        if ((result.*item.isError)()) {
            // A negative count leaves out the absolute figure.
            CCoverageTestResult::serializeCoverageData(emitter, item.key, (expected.*item.expected)(),
                                                       (measured.*item.measured)(), -1);
        }
    }
}

} // namespace

// A null specification is accepted: its identity is empty and it has no analyzer sections.
CTestResult::CTestResult(std::shared_ptr<CTestSpecification> testSpec, const std::string& exceptionString)
    : m_testSpec(std::move(testSpec)), m_isError(true), m_isException(true), m_exceptionString(exceptionString)
{
}

CTestResult::CTestResult(std::shared_ptr<CTestSpecification> testSpec, const StrVector& expressionResults,
                         const StrCoverageTestResultsMap& coverageResults,
                         const StrProfilerTestResultsMap& profilerCodeResults,
                         const StrProfilerTestResultsVectorMap& profilerDataResults)
    : m_expressionResults(expressionResults), m_coverageResults(coverageResults),
      m_profilerCodeResults(profilerCodeResults), m_profilerDataResults(profilerDataResults),
      m_testSpec(std::move(testSpec))
{
    m_isExprError = std::any_of(m_expressionResults.begin(), m_expressionResults.end(),
                                [](const std::string& result) { return !result.empty(); });
    m_isCoverageError = anyInError(m_coverageResults);
    m_isProfilerCodeError = anyInError(m_profilerCodeResults);
    m_isProfilerDataError = anyInError(m_profilerDataResults);
    m_isError = m_isExprError || m_isCoverageError || m_isProfilerCodeError || m_isProfilerDataError;
}

std::string CTestResult::getTestId() const
{
    return m_testSpec ? m_testSpec->getTestId() : std::string();
}

std::string CTestResult::getFunction() const
{
    return m_testSpec ? m_testSpec->getFunctionUnderTest().getName() : std::string();
}

void CTestResult::getExpressionResults(StrVector& results) const
{
    results = m_expressionResults;
}

void CTestResult::getCoverageResults(StrCoverageTestResultsMap& results) const
{
    results = m_coverageResults;
}

void CTestResult::getProfilerCodeResults(StrProfilerTestResultsMap& results) const
{
    results = m_profilerCodeResults;
}

void CTestResult::getProfilerDataResults(StrProfilerTestResultsVectorMap& results) const
{
    results = m_profilerDataResults;
}

void CTestResult::getCoverageResultsWithError(StrCoverageTestResultsMap& results) const
{
    copyInError(m_coverageResults, results);
}

void CTestResult::getProfilerCodeResultsWithError(StrProfilerTestResultsMap& results) const
{
    copyInError(m_profilerCodeResults, results);
}

void CTestResult::getProfilerDataResultsWithError(StrProfilerTestResultsVectorMap& results) const
{
    copyInError(m_profilerDataResults, results);
}

void CTestResult::addEnvironmentInfo(const std::string& key, const std::string& value)
{
    m_environment.emplace_back(key, value);
}

std::string CTestResult::toString() const
{
    std::ostringstream text;
    text << "CTestResult:"
         << "\n  isError: " << m_isError
         << "\n  isException: " << m_isException
         << "\n  exceptionString: " << m_exceptionString
         << "\n  isExpressionError: " << m_isExprError
         << "\n  isCodeCoverageError: " << m_isCoverageError
         << "\n  isProfilerCodeError: " << m_isProfilerCodeError
         << "\n  isProfilerDataError: " << m_isProfilerDataError;
    return text.str();
}

void CTestResult::serialize(std::shared_ptr<IEmitter> emitter, std::shared_ptr<CTestReportConfig> reportConfig) const
{
    serializeReport(emitter, reportConfig, false);
}

void CTestResult::serializeErrorsOnly(std::shared_ptr<IEmitter> emitter,
                                      std::shared_ptr<CTestReportConfig> reportConfig) const
{
    serializeReport(emitter, reportConfig, true);
}

void CTestResult::serializeReport(const Emitter& emitter, const ReportConfig& config,
                                  bool isErrorsOnly) const
{
    IEmitter::checkNotNull(emitter);
    // Resolved before anything is written: an unknown variable leaves no half-written report.
    const std::string outputFile = isErrorsOnly ? std::string() : resolveOutputFile(config);
    emitter->mapStart();
    emitter->write("testResult");
    emitter->mapStart();

    emitter->writeMappingPair("testId", getTestId());
    emitter->writeMappingPair("function", getFunction());
    if (isErrorsOnly) {
        emitter->writeMappingPair("isError", m_isError);
    } else {
        serializeSummary(emitter);
    }
    serializeSpecAndEnvironment(emitter, config);
    if (m_isExprError) {
        serializeExpressions(emitter);
    }
    if (isErrorsOnly) {
        serializeErrors(emitter);
    } else {
        serializeAnalyzers(emitter, outputFile);
    }

    emitter->mapEnd();
    emitter->mapEnd();
}

void CTestResult::serializeSummary(const Emitter& emitter) const
{
    StrVector tags;
    if (m_testSpec) {
        m_testSpec->getTags(tags);
    }
    emitter->writeMappingPair("description", m_testSpec ? m_testSpec->getDescription() : std::string());
    emitter->writeMappingPair("tags", CYAMLUtil::strVector2Str(tags));
    emitter->writeMappingPair("reportVersion", std::string(REPORT_VERSION));

    emitter->writeMappingPair("isError", m_isError);
    emitter->writeMappingPair("isExprError", m_isExprError);
    emitter->writeMappingPair("isException", m_isException);
    emitter->writeMappingPair("exceptionStr", m_exceptionString);
    emitter->writeMappingPair("isCoverageError", m_isCoverageError);
    emitter->writeMappingPair("isProfilerCodeError", m_isProfilerCodeError);
    emitter->writeMappingPair("isProfilerDataError", m_isProfilerDataError);
}

std::string CTestResult::resolveOutputFile(const ReportConfig& config) const
{
    std::string name = m_testSpec ? m_testSpec->getProfiler().getOutputFileName() : std::string();
    if (name.empty()) {
        return name;
    }
    // Without a report config there are no variables.
    StrStrMap variables;
    if (config) {
        config->getUserInfo(variables);
    }
    return CUtil::substVars(name, variables);
}

void CTestResult::serializeAnalyzers(const Emitter& emitter, const std::string& outputFile) const
{
    if (m_testSpec) {
        serializeTrace(emitter);
    }
    if (!m_coverageResults.empty()) {
        serializeCoverage(emitter);
    }
    serializeCodeProfiler(emitter, outputFile);
    if (!m_profilerDataResults.empty()) {
        serializeDataProfiler(emitter, outputFile);
    }
}

void CTestResult::serializeSpecAndEnvironment(const Emitter& emitter, const ReportConfig& config) const
{
    if (config && config->isIncludeTestSpec() && m_testSpec) {
        emitter->write("tests");
        emitter->write(m_testSpec->toString());
    }
    if (!m_environment.empty()) {
        emitter->write("environment");
        emitter->mapStart();
        for (const auto& pair : m_environment) {
            emitter->writeMappingPair(pair.first, emitter->escapeSpecialChars(pair.second));
        }
        emitter->mapEnd();
    }
}

// Each failed expression is its text, then one line per variable with four leading blanks.
// A message without a line feed is all expression, with no values.
void CTestResult::serializeExpressions(const Emitter& emitter) const
{
    emitter->write("expressionDiffs");
    emitter->sequenceStart();
    for (const auto& result : m_expressionResults) {
        if (result.empty()) {
            continue;
        }
        size_t lineEnd = result.find('\n');
        emitter->mapStart();
        emitter->writeMappingPair("expect", result.substr(0, lineEnd));
        emitter->write("targetValues");
        emitter->sequenceStart();
        while (lineEnd != std::string::npos && lineEnd + 1 < result.size()) {
            size_t start = lineEnd + 1;
            lineEnd = result.find('\n', start);
            emitter->write(result.substr(start, lineEnd == std::string::npos ? std::string::npos : lineEnd - start));
        }
        emitter->sequenceEnd();
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
}

void CTestResult::serializeTrace(const Emitter& emitter) const
{
    CTestTrace& trace = m_testSpec->getTrace();
    if (trace.isEmpty()) {
        return;
    }
    emitter->write("trace");
    emitter->mapStart();
    writeDocumentFiles(emitter, trace.getDocumentFileName(), trace.getExportFileName());
    emitter->mapEnd();
}

void CTestResult::serializeCoverage(const Emitter& emitter) const
{
    emitter->write("coverage");
    emitter->mapStart();
    if (m_testSpec) {
        CTestCoverage& coverage = m_testSpec->getCoverage();
        writeDocumentFiles(emitter, coverage.getDocumentFileName(), coverage.getExportFileName());
    } else {
        writeDocumentFiles(emitter, "", "");
    }
    emitter->write("results");
    writeNamedResults(emitter, m_coverageResults, "function", false,
                      [&emitter](const CCoverageTestResult& result) { result.serialize(emitter); });
    emitter->mapEnd();
}

void CTestResult::serializeOutputFile(const Emitter& emitter, const std::string& outputFile) const
{
    if (!m_testSpec || m_testSpec->getProfiler().getOutputFileName().empty()) {
        return;
    }
    emitter->write("files");
    emitter->mapStart();
    emitter->writeMappingPair("outputFile", outputFile);
    emitter->mapEnd();
}

void CTestResult::serializeCodeProfiler(const Emitter& emitter, const std::string& outputFile) const
{
    if (!m_testSpec) {
        return;
    }
    CTestProfiler& profiler = m_testSpec->getProfiler();
    bool hasResults = !m_profilerCodeResults.empty();
    if (profiler.getRunMode() != CTestProfiler::rmStart || (!hasResults && profiler.getOutputFileName().empty())) {
        return;
    }
    emitter->write("codeProfiler");
    emitter->mapStart();
    serializeOutputFile(emitter, outputFile);
    if (hasResults) {
        emitter->write("results");
        writeNamedResults(emitter, m_profilerCodeResults, "function", false,
                          [&emitter](const CProfilerTestResult& result) { result.serialize(emitter); });
    }
    emitter->mapEnd();
}

void CTestResult::serializeDataProfiler(const Emitter& emitter, const std::string& outputFile) const
{
    emitter->write("dataProfiler");
    emitter->mapStart();
    serializeOutputFile(emitter, outputFile);
    emitter->write("results");
    writeNamedResults(emitter, m_profilerDataResults, "variable", false, [&emitter](const auto& results) {
        writeDataValues(emitter, results, false);
    });
    emitter->mapEnd();
}

// The short form lists the results in error directly under the analyzer's key.
void CTestResult::serializeErrors(const Emitter& emitter) const
{
    if (m_isCoverageError) {
        emitter->write("coverage");
        writeNamedResults(emitter, m_coverageResults, "function", true, [&emitter](const auto& result) {
            writeCoverageItemsInError(emitter, result);
        });
    }
    if (m_isProfilerCodeError) {
        emitter->write("codeProfiler");
        writeNamedResults(emitter, m_profilerCodeResults, "function", true,
                          [&emitter](const CProfilerTestResult& result) { result.serializeErrorsOnly(emitter); });
    }
    if (m_isProfilerDataError) {
        emitter->write("dataProfiler");
        writeNamedResults(emitter, m_profilerDataResults, "variable", true, [&emitter](const auto& results) {
            writeDataValues(emitter, results, true);
        });
    }
}

} // namespace kestrix
