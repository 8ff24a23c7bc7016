#include "CTestResult.h"

#include <algorithm>
#include <sstream>

#include "CTestReportConfig.h"
#include "CTestSpecification.h"
#include "CUtil.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"

namespace kestrix {

const char* const CTestResult::REPORT_VERSION = "1.0";

namespace {

bool hasErrorResult(const ProfilerTestResultsVector& results)
{
    return std::any_of(results.begin(), results.end(), [](const CProfilerTestResult& r) { return r.isError(); });
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

void writeCoverageItemError(const std::shared_ptr<IEmitter>& emitter, const char* key, double expected,
                            double measuredRel)
{
    emitter->write(key);
    emitter->mapStart();
    emitter->writeMappingPair("expected", expected);
    emitter->writeMappingPair("measuredRel", measuredRel);
    emitter->mapEnd();
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
    m_isCoverageError = std::any_of(m_coverageResults.begin(), m_coverageResults.end(),
                                    [](const auto& entry) { return entry.second.isError(); });
    m_isProfilerCodeError = std::any_of(m_profilerCodeResults.begin(), m_profilerCodeResults.end(),
                                        [](const auto& entry) { return entry.second.isError(); });
    m_isProfilerDataError = std::any_of(m_profilerDataResults.begin(), m_profilerDataResults.end(),
                                        [](const auto& entry) { return hasErrorResult(entry.second); });
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
    results.clear();
    for (const auto& entry : m_coverageResults) {
        if (entry.second.isError()) {
            results.insert(entry);
        }
    }
}

void CTestResult::getProfilerCodeResultsWithError(StrProfilerTestResultsMap& results) const
{
    results.clear();
    for (const auto& entry : m_profilerCodeResults) {
        if (entry.second.isError()) {
            results.insert(entry);
        }
    }
}

void CTestResult::getProfilerDataResultsWithError(StrProfilerTestResultsVectorMap& results) const
{
    results.clear();
    for (const auto& entry : m_profilerDataResults) {
        if (hasErrorResult(entry.second)) {
            results.insert(entry);
        }
    }
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
    emitter->mapStart();
    emitter->write("testResult");
    emitter->mapStart();

    emitter->writeMappingPair("testId", getTestId());
    emitter->writeMappingPair("function", getFunction());
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

    serializeSpecAndEnvironment(emitter, reportConfig);
    if (m_isExprError) {
        serializeExpressions(emitter);
    }

    // Without a report config there are no variables for the profiler's output file name.
    StrStrMap variables;
    if (reportConfig) {
        reportConfig->getUserInfo(variables);
    }
    if (m_testSpec) {
        serializeTrace(emitter);
    }
    if (!m_coverageResults.empty()) {
        serializeCoverage(emitter);
    }
    serializeCodeProfiler(emitter, variables);
    if (!m_profilerDataResults.empty()) {
        serializeDataProfiler(emitter, variables);
    }

    emitter->mapEnd();
    emitter->mapEnd();
}

void CTestResult::serializeErrorsOnly(std::shared_ptr<IEmitter> emitter,
                                      std::shared_ptr<CTestReportConfig> reportConfig) const
{
    emitter->mapStart();
    emitter->write("testResult");
    emitter->mapStart();

    emitter->writeMappingPair("testId", getTestId());
    emitter->writeMappingPair("function", getFunction());
    emitter->writeMappingPair("isError", m_isError);
    serializeSpecAndEnvironment(emitter, reportConfig);

    if (m_isError) {
        if (m_isExprError) {
            serializeExpressions(emitter);
        }
        if (m_isCoverageError) {
            serializeCoverageErrors(emitter);
        }
        if (m_isProfilerCodeError) {
            serializeCodeProfilerErrors(emitter);
        }
        if (m_isProfilerDataError) {
            serializeDataProfilerErrors(emitter);
        }
    }

    emitter->mapEnd();
    emitter->mapEnd();
}

void CTestResult::serializeSpecAndEnvironment(const Emitter& emitter,
                                              const std::shared_ptr<CTestReportConfig>& config) const
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
    emitter->sequenceStart();
    for (const auto& entry : m_coverageResults) {
        emitter->mapStart();
        emitter->writeMappingPair("function", entry.first);
        entry.second.serialize(emitter);
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
    emitter->mapEnd();
}

void CTestResult::serializeOutputFile(const Emitter& emitter, const StrStrMap& variables) const
{
    std::string outputFile = m_testSpec ? m_testSpec->getProfiler().getOutputFileName() : std::string();
    if (outputFile.empty()) {
        return;
    }
    emitter->write("files");
    emitter->mapStart();
    emitter->writeMappingPair("outputFile", CUtil::substVars(outputFile, variables));
    emitter->mapEnd();
}

void CTestResult::serializeCodeProfiler(const Emitter& emitter, const StrStrMap& variables) const
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
    serializeOutputFile(emitter, variables);
    if (hasResults) {
        emitter->write("results");
        emitter->sequenceStart();
        for (const auto& entry : m_profilerCodeResults) {
            emitter->mapStart();
            emitter->writeMappingPair("function", entry.first);
            entry.second.serialize(emitter);
            emitter->mapEnd();
        }
        emitter->sequenceEnd();
    }
    emitter->mapEnd();
}

void CTestResult::serializeDataProfiler(const Emitter& emitter, const StrStrMap& variables) const
{
    emitter->write("dataProfiler");
    emitter->mapStart();
    serializeOutputFile(emitter, variables);
    emitter->write("results");
    emitter->sequenceStart();
    for (const auto& variable : m_profilerDataResults) {
        emitter->mapStart();
        emitter->writeMappingPair("variable", variable.first);
        emitter->write("values");
        emitter->sequenceStart();
        for (const auto& result : variable.second) {
            emitter->mapStart();
            result.serialize(emitter);
            emitter->mapEnd();
        }
        emitter->sequenceEnd();
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
    emitter->mapEnd();
}

void CTestResult::serializeCoverageErrors(const Emitter& emitter) const
{
    emitter->write("coverage");
    emitter->sequenceStart();
    for (const auto& entry : m_coverageResults) {
        const CCoverageTestResult& result = entry.second;
        if (!result.isError()) {
            continue;
        }
        CCoverageTestExpected expected = result.getExpectedResults();
        CCoverageStatistic measured = result.getMeasuredResults();
        emitter->mapStart();
        emitter->writeMappingPair("function", entry.first);
        if (result.isBytesExecutedError()) {
            writeCoverageItemError(emitter, "bytesExecuted", expected.getBytesExecutedRel(),
                                   measured.getBytesExecutedRel());
        }
        if (result.isBranchesExecutedError()) {
            writeCoverageItemError(emitter, "branchesExecuted", expected.getBranchesExecutedRel(),
                                   measured.getBranchesExecutedRel());
        }
        if (result.isBranchesTakenError()) {
            writeCoverageItemError(emitter, "branchesTaken", expected.getBranchesTakenRel(),
                                   measured.getBranchesTakenRel());
        }
        if (result.isBranchesNotTakenError()) {
            writeCoverageItemError(emitter, "branchesNotTaken", expected.getBranchesNotTakenRel(),
                                   measured.getBranchesNotTakenRel());
        }
        if (result.isBranchesBothError()) {
            writeCoverageItemError(emitter, "branchesBoth", expected.getBranchesBothRel(),
                                   measured.getBranchesBothRel());
        }
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
}

void CTestResult::serializeCodeProfilerErrors(const Emitter& emitter) const
{
    emitter->write("codeProfiler");
    emitter->sequenceStart();
    for (const auto& entry : m_profilerCodeResults) {
        if (!entry.second.isError()) {
            continue;
        }
        emitter->mapStart();
        emitter->writeMappingPair("function", entry.first);
        entry.second.serializeErrorsOnly(emitter);
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
}

void CTestResult::serializeDataProfilerErrors(const Emitter& emitter) const
{
    emitter->write("dataProfiler");
    emitter->sequenceStart();
    for (const auto& variable : m_profilerDataResults) {
        if (!hasErrorResult(variable.second)) {
            continue;
        }
        emitter->mapStart();
        emitter->writeMappingPair("variable", variable.first);
        emitter->write("values");
        emitter->sequenceStart();
        for (const auto& result : variable.second) {
            if (result.isError()) {
                emitter->mapStart();
                result.serializeErrorsOnly(emitter);
                emitter->mapEnd();
            }
        }
        emitter->sequenceEnd();
        emitter->mapEnd();
    }
    emitter->sequenceEnd();
}

} // namespace kestrix
