#include <gtest/gtest.h>

#include "CStringStream.h"
#include "CTestReportConfig.h"
#include "CTestResult.h"
#include "CTestSpecification.h"
#include "CYAMLUtil.h"
#include "EmitterFactory.h"
#include "IException.h"

using namespace kestrix;

// Whole reports of test results, written through the YAML and the XML emitter from
// specifications read from YAML.

namespace {

enum class Form { full, errorsOnly };

std::string report(const std::shared_ptr<IEmitter>& emitter, const std::shared_ptr<CStringStream>& stream,
                   const CTestResult& result, Form form, const std::shared_ptr<CTestReportConfig>& config)
{
    emitter->startStream();
    emitter->startDocument(false);
    if (form == Form::full) {
        result.serialize(emitter, config);
    } else {
        result.serializeErrorsOnly(emitter, config);
    }
    emitter->endDocument(false);
    emitter->endStream();
    return stream->getString();
}

std::string yamlReport(const CTestResult& result, Form form = Form::full,
                       const std::shared_ptr<CTestReportConfig>& config = nullptr)
{
    auto stream = std::make_shared<CStringStream>();
    return report(EmitterFactory::createYamlEmitter(stream), stream, result, form, config);
}

std::string xmlReport(const CTestResult& result, Form form = Form::full,
                      const std::shared_ptr<CTestReportConfig>& config = nullptr)
{
    auto stream = std::make_shared<CStringStream>();
    return report(EmitterFactory::createXmlEmitter(stream), stream, result, form, config);
}

/// One line "  key: value"; libyaml writes an empty value with no blank behind the colon.
std::string line(const std::string& key, const std::string& value)
{
    return "  " + key + ":" + (value.empty() ? "" : " " + value) + "\n";
}

/// The lines of the YAML report's fixed head, up to "isProfilerDataError".
std::string head(const std::string& id, const std::string& func, const std::string& desc, const std::string& flags,
                 const std::string& tags = "")
{
    return "---\ntestResult:\n" + line("testId", id) + line("function", func) + line("description", desc) +
           line("tags", tags) + "  reportVersion: 1.0\n" + flags;
}

std::string flags(bool isError, bool isExpr, bool isCoverage, bool isCode, bool isData,
                  const std::string& exception = "")
{
    auto word = [](bool value) { return std::string(value ? "true" : "false"); };
    return line("isError", word(isError)) + line("isExprError", word(isExpr)) +
           line("isException", word(!exception.empty())) + line("exceptionStr", exception) +
           line("isCoverageError", word(isCoverage)) + line("isProfilerCodeError", word(isCode)) +
           line("isProfilerDataError", word(isData));
}

/// The head of the short form.
std::string shortHead(const std::string& id, bool isError, const std::string& func = "add")
{
    return "---\ntestResult:\n" + line("testId", id) + line("function", func) +
           line("isError", isError ? "true" : "false");
}

/// The XML report around the body of the "testResult" mapping.
std::string xmlDoc(const std::string& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<main>\n  <doc>\n    <map>\n      <testResult>\n"
           "        <map>\n" + body + "        </map>\n      </testResult>\n    </map>\n  </doc>\n</main>\n";
}

/// One measured parameter against its limits, indented by `pad` (`lead` replaces it on the first line).
std::string limits(const std::string& pad, const std::string& name, const std::string& expected,
                   const std::string& measured, const std::string& lead = "")
{
    return (lead.empty() ? pad : lead) + name + ":\n" + pad + "  expected: [" + expected + "]\n" + pad +
           "  measured: [" + measured + "]\n";
}

CTestResult expressionResult(const std::shared_ptr<CTestSpecification>& spec, const StrVector& expressions)
{
    return CTestResult(spec, expressions, {}, {}, {});
}

/// Code profiler results as a run leaves them: one per area, measured or all zero.
StrProfilerTestResultsMap codeResults(CTestSpecification& spec, const ProfilerStatisticMap& measured)
{
    StrProfilerTestResultsMap results;
    for (const auto& area : spec.getProfiler().getCodeAreas()) {
        auto found = measured.find(area->getAreaName());
        CProfilerStatistic statistic = found == measured.end() ? CProfilerStatistic() : found->second;
        results[area->getAreaName()] = CProfilerTestResult(*area, statistic, true);
    }
    return results;
}

const char* const T1_SPEC = "id: t1\n"
                            "desc: adds\n"
                            "func: [add]\n"
                            "expect:\n"
                            "- a == 3\n";

} // namespace

TEST(CTestResultReportTest, FailedExpressionInXml)
{
    auto spec = CTestSpecification::parseTestSpec(T1_SPEC);
    CTestResult result = expressionResult(spec, {"a == 3\n    a = 5"});

    EXPECT_EQ(xmlDoc("          <testId>t1</testId>\n"
              "          <function>add</function>\n"
              "          <description>adds</description>\n"
              "          <tags></tags>\n"
              "          <reportVersion>1.0</reportVersion>\n"
              "          <isError>1</isError>\n"
              "          <isExprError>1</isExprError>\n"
              "          <isException>0</isException>\n"
              "          <exceptionStr></exceptionStr>\n"
              "          <isCoverageError>0</isCoverageError>\n"
              "          <isProfilerCodeError>0</isProfilerCodeError>\n"
              "          <isProfilerDataError>0</isProfilerDataError>\n"
              "          <expressionDiffs>\n"
              "            <sequence>\n"
              "              <map>\n"
              "                <expect>a == 3</expect>\n"
              "                <targetValues>\n"
              "                  <sequence>\n"
              "                    <item>    a = 5</item>\n"
              "                  </sequence>\n"
              "                </targetValues>\n"
              "              </map>\n"
              "            </sequence>\n"
              "          </expressionDiffs>\n"),
              xmlReport(result));
}

TEST(CTestResultReportTest, FailedExpressionsInYaml)
{
    auto spec = CTestSpecification::parseTestSpec("id: t1\nfunc: [add]\ntags: [unit, math]\n");
    // The first held; the second names two variables; the third has no variable at all.
    CTestResult result = expressionResult(spec, {"", "a == b\n    a = 1\n    b = 2", "0 == 1\n"});

    EXPECT_EQ(head("t1", "add", "", flags(true, true, false, false, false), "unit, math") +
                  "  expressionDiffs:\n"
                  "  - expect: a == b\n"
                  "    targetValues:\n"
                  "    - ! '    a = 1'\n"
                  "    - ! '    b = 2'\n"
                  "  - expect: 0 == 1\n"
                  "    targetValues: []\n"
                  "...\n",
              yamlReport(result));
}

TEST(CTestResultReportTest, ErrorsOnlyOfExpressionWithEnvironmentAndSpec)
{
    auto spec = CTestSpecification::parseTestSpec(T1_SPEC);
    CTestResult result = expressionResult(spec, {"a == 3\n    a = 5"});
    result.addEnvironmentInfo("user", "<me & you>");
    result.addEnvironmentInfo("host", "pc1");
    auto config = std::make_shared<CTestReportConfig>();
    CYAMLUtil::parseYAML(*config, "{isIncludeTestSpec: true}");

    EXPECT_EQ(shortHead("t1", true) +
              "  tests: ! 'id: t1\n\n"
              "    desc: adds\n\n"
              "    func: [add]\n\n"
              "    expect:\n\n"
              "    - a == 3\n\n"
              "    '\n"
              "  environment:\n"
              "    user: <me & you>\n"
              "    host: pc1\n"
              "  expressionDiffs:\n"
              "  - expect: a == 3\n"
              "    targetValues:\n"
              "    - ! '    a = 5'\n"
              "...\n",
              yamlReport(result, Form::errorsOnly, config));
}

TEST(CTestResultReportTest, ResultsWithNoDetailToReport)
{
    auto spec = CTestSpecification::parseTestSpec(T1_SPEC);
    CTestResult passed = expressionResult(spec, {""});
    passed.addEnvironmentInfo("user", "me");
    const std::string none = "...\n";
    const std::string environment = "  environment:\n    user: me\n...\n";
    const struct {
        CTestResult result;
        std::string full;
        std::string shortForm;
    } rows[] = {
        {CTestResult(spec, "Target not responding!"),
         head("t1", "add", "adds", flags(true, false, false, false, false, "Target not responding!")) + none,
         shortHead("t1", true) + none},
        {CTestResult(nullptr, "no test"), head("", "", "", flags(true, false, false, false, false, "no test")) + none,
         shortHead("", true, "") + none},
        // Expressions that all held are no error.
        {passed, head("t1", "add", "adds", flags(false, false, false, false, false)) + environment,
         shortHead("t1", false) + environment},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.full);
        EXPECT_EQ(row.full, yamlReport(row.result));
        EXPECT_EQ(row.shortForm, yamlReport(row.result, Form::errorsOnly));
    }
}

TEST(CTestResultReportTest, CoverageReport)
{
    auto spec = CTestSpecification::parseTestSpec("id: t2\n"
                                                  "func: [add]\n"
                                                  "coverage:\n"
                                                  "  document: cov1\n"
                                                  "  statistics:\n"
                                                  "  - func: add\n"
                                                  "    code: 100\n");
    StrCoverageTestResultsMap coverage;
    coverage["add"] = CCoverageTestResult(CCoverageTestExpected(*spec->getCoverage().getStatistics(0)),
                                          CCoverageStatistic(40, 20, 0, 0, 0, 0, 0));
    CTestResult result(spec, StrVector(), coverage, {}, {});

    std::string noBranch = "        expected: 0\n"
                           "        measuredRel: -1\n"
                           "        measuredAbs: 0\n";
    EXPECT_EQ(head("t2", "add", "", flags(true, false, true, false, false)) +
                  "  coverage:\n"
                  "    files:\n"
                  "      document: cov1\n"
                  "    results:\n"
                  "    - function: add\n"
                  "      isError: true\n"
                  "      isBytesExecutedError: true\n"
                  "      isBranchesExecutedError: false\n"
                  "      isBranchesTakenError: false\n"
                  "      isBranchesNotTakenError: false\n"
                  "      isBranchesBothError: false\n"
                  "      bytesAll: 40\n"
                  "      branchesAll: 0\n"
                  "      bytesExecuted:\n"
                  "        expected: 1\n"
                  "        measuredRel: 0.5\n"
                  "        measuredAbs: 20\n"
                  "      branchesExecuted:\n" + noBranch +
                  "      branchesTaken:\n" + noBranch +
                  "      branchesNotTaken:\n" + noBranch +
                  "      branchesBoth:\n" + noBranch +
                  "...\n",
              yamlReport(result));

    EXPECT_EQ(shortHead("t2", true) +
              "  coverage:\n"
              "  - function: add\n"
              "    bytesExecuted:\n"
              "      expected: 1\n"
              "      measuredRel: 0.5\n"
              "...\n",
              yamlReport(result, Form::errorsOnly));
}

TEST(CTestResultReportTest, CoverageErrorsOnlyListsFailedFunctionsAndItems)
{
    auto spec = CTestSpecification::parseTestSpec("id: t2\n"
                                                  "func: [add]\n"
                                                  "coverage:\n"
                                                  "  document: cov1\n"
                                                  "  exportFile: cov.html\n"
                                                  "  statistics:\n"
                                                  "  - func: add\n"
                                                  "    branches: 50\n"
                                                  "    both: 25\n"
                                                  "  - func: sub\n"
                                                  "    code: 10\n");
    CTestCoverage& section = spec->getCoverage();
    StrCoverageTestResultsMap coverage;
    // 1 of 4 branches executed, none both ways; sub meets its expectation.
    coverage["add"] = CCoverageTestResult(CCoverageTestExpected(*section.getStatistics(0)),
                                          CCoverageStatistic(10, 10, 4, 1, 1, 0, 0));
    coverage["sub"] = CCoverageTestResult(CCoverageTestExpected(*section.getStatistics(1)),
                                          CCoverageStatistic(10, 1, 0, 0, 0, 0, 0));
    CTestResult result(spec, StrVector(), coverage, {}, {});

    EXPECT_EQ(shortHead("t2", true) +
              "  coverage:\n"
              "  - function: add\n"
              "    branchesExecuted:\n"
              "      expected: 0.5\n"
              "      measuredRel: 0.25\n"
              "    branchesBoth:\n"
              "      expected: 0.25\n"
              "      measuredRel: 0\n"
              "...\n",
              yamlReport(result, Form::errorsOnly));

    std::string full = yamlReport(result);
    EXPECT_NE(std::string::npos, full.find("    files:\n      document: cov1\n      exportFile: cov.html\n"));
}

TEST(CTestResultReportTest, CodeProfilerReport)
{
    auto spec = CTestSpecification::parseTestSpec("id: t3\n"
                                                  "func: [add]\n"
                                                  "profiler:\n"
                                                  "  codeAreas:\n"
                                                  "  - name: add\n"
                                                  "    hits: [5, 10]\n"
                                                  "  - name: sub\n"
                                                  "    hits: [0, 10]\n");
    // "sub" meets its expectation: the short form leaves it out.
    CTestResult result(spec, StrVector(), {},
                       codeResults(*spec, {{"add", CProfilerStatistic(7, 0, 370, 130, 120, 3)},
                                           {"sub", CProfilerStatistic(8, 0, 10, 10, 10, 1)}}),
                       {});

    EXPECT_EQ(head("t3", "add", "", flags(true, false, false, true, false)) +
                  "  codeProfiler:\n"
                  "    results:\n"
                  "    - function: add\n"
                  "      isError: true\n"
                  "      minTimeStatus: ERR_NONE\n"
                  "      maxTimeStatus: ERR_NONE\n"
                  "      totalTimeStatus: ERR_NONE\n"
                  "      hitsStatus: ERR_MIN\n"
                  "      measuredProfilerResults:\n" +
                  limits("        ", "minTime", "0, 0", "120, ERR_NONE", "      - ") +
                  limits("        ", "maxTime", "0, 0", "130, ERR_NONE") +
                  limits("        ", "totalTime", "0, 0", "370, ERR_NONE") +
                  limits("        ", "hits", "5, 10", "3, ERR_MIN") +
                  "    - function: sub\n"
                  "      isError: false\n"
                  "      minTimeStatus: ERR_NONE\n"
                  "      maxTimeStatus: ERR_NONE\n"
                  "      totalTimeStatus: ERR_NONE\n"
                  "      hitsStatus: ERR_NONE\n"
                  "      measuredProfilerResults:\n" +
                  limits("        ", "minTime", "0, 0", "10, ERR_NONE", "      - ") +
                  limits("        ", "maxTime", "0, 0", "10, ERR_NONE") +
                  limits("        ", "totalTime", "0, 0", "10, ERR_NONE") +
                  limits("        ", "hits", "0, 10", "1, ERR_NONE") + "...\n",
              yamlReport(result));

    EXPECT_EQ(shortHead("t3", true) +
              "  codeProfiler:\n"
              "  - function: add\n"
              "    measuredProfilerResults:\n"
              "    - minTime: true\n"
              "      maxTime: true\n"
              "      totalTime: true\n"
              "      hits:\n"
              "        expected: [5, 10]\n"
              "        measured: [3, ERR_MIN]\n"
              "...\n",
              yamlReport(result, Form::errorsOnly));
}

TEST(CTestResultReportTest, CodeProfilerOutputFileWithUserVariables)
{
    auto spec = CTestSpecification::parseTestSpec("id: t4\n"
                                                  "func: [add]\n"
                                                  "profiler:\n"
                                                  "  outFile: ${dir}/prof.yaml\n");
    CTestResult result(spec, StrVector(), {}, {}, {});
    auto config = std::make_shared<CTestReportConfig>();
    CYAMLUtil::parseYAML(*config, "{testInfo: {dir: out}}");

    EXPECT_EQ(head("t4", "add", "", flags(false, false, false, false, false)) +
                  "  codeProfiler:\n"
                  "    files:\n"
                  "      outputFile: out/prof.yaml\n"
                  "...\n",
              yamlReport(result, Form::full, config));
    // Without a report config the variable is unknown; nothing of the test is written.
    auto stream = std::make_shared<CStringStream>();
    EXPECT_THROW(result.serialize(EmitterFactory::createXmlEmitter(stream), nullptr), IException);
    EXPECT_EQ("", stream->getString());
}

TEST(CTestResultReportTest, ProfilerOffWritesNoCodeProfilerPart)
{
    auto spec = CTestSpecification::parseTestSpec("id: t5\n"
                                                  "func: [add]\n"
                                                  "profiler:\n"
                                                  "  runMode: off\n"
                                                  "  codeAreas:\n"
                                                  "  - name: add\n"
                                                  "    hits: [1, 1]\n");
    // An area that was never measured is judged all zero, so expected hits fail.
    CTestResult result(spec, StrVector(), {}, codeResults(*spec, {}), {});
    EXPECT_TRUE(result.isProfilerCodeError());
    EXPECT_EQ(head("t5", "add", "", flags(true, false, false, true, false)) + "...\n", yamlReport(result));
    // The short form tells the error whatever the run mode.
    EXPECT_NE(std::string::npos, yamlReport(result, Form::errorsOnly).find("  codeProfiler:\n  - function: add\n"));
}

TEST(CTestResultReportTest, DataProfilerReport)
{
    auto spec = CTestSpecification::parseTestSpec("id: t6\n"
                                                  "func: [add]\n"
                                                  "profiler:\n"
                                                  "  outFile: prof.yaml\n"
                                                  "  dataAreas:\n"
                                                  "  - name: state\n"
                                                  "    value: 0x10\n"
                                                  "    totalTime: [0, 100]\n"
                                                  "  - name: state\n"
                                                  "    value: 2\n"
                                                  "    hits: [1, 5]\n"
                                                  "  - name: state\n"
                                                  "    maxTime: [0, 50]\n");
    const ProfilerAreasVector& areas = spec->getProfiler().getDataAreas();
    ProfilerTestResultsVector state;
    state.emplace_back(*areas[0], CProfilerStatistic(1, 16, 150, 80, 70, 2), false);
    state.emplace_back(*areas[1], false);
    state.emplace_back(*areas[2], CProfilerStatistic(1, 3, 40, 40, 40, 1), false);
    state.back().addMeasuredResults(CProfilerStatistic(1, 4, 60, 60, 60, 1));
    CTestResult result(spec, StrVector(), {}, {}, {{"state", state}});

    // One result per expected value; the area without a value collects 3 and 4.
    const std::string pad = "          ";
    auto entryOf = [&pad](const std::string& time) {
        return limits(pad, "minTime", "0, 0", time + ", ERR_NONE") + limits(pad, "maxTime", "0, 50", time + ", ERR_MAX") +
               limits(pad, "totalTime", "0, 0", time + ", ERR_NONE") + limits(pad, "hits", "0, 0", "1, ERR_NONE");
    };
    std::string values16 = "      - isError: true\n"
                           "        minTimeStatus: ERR_NONE\n"
                           "        maxTimeStatus: ERR_NONE\n"
                           "        totalTimeStatus: ERR_MAX\n"
                           "        hitsStatus: ERR_NONE\n"
                           "        specifiedValue: 16\n"
                           "        measuredProfilerResults:\n"
                           "        - measuredValue: 16\n"
                           "          isError: true\n" +
                           limits(pad, "minTime", "0, 0", "70, ERR_NONE") + limits(pad, "maxTime", "0, 0", "80, ERR_NONE") +
                           limits(pad, "totalTime", "0, 100", "150, ERR_MAX") + limits(pad, "hits", "0, 0", "2, ERR_NONE");
    std::string values2 = "      - isError: true\n"
                          "        minTimeStatus: ERR_NONE\n"
                          "        maxTimeStatus: ERR_NONE\n"
                          "        totalTimeStatus: ERR_NONE\n"
                          "        hitsStatus: ERR_MIN\n"
                          "        specifiedValue: 2\n"
                          "        measuredProfilerResults:\n"
                          "        - minTime: true\n"
                          "          maxTime: true\n"
                          "          totalTime: true\n" +
                          limits(pad, "hits", "1, 5", "0, ERR_MIN");
    // The output file is named in the code profiler part too, since the profiler ran.
    EXPECT_EQ(head("t6", "add", "", flags(true, false, false, false, true)) +
                  "  codeProfiler:\n"
                  "    files:\n"
                  "      outputFile: prof.yaml\n"
                  "  dataProfiler:\n"
                  "    files:\n"
                  "      outputFile: prof.yaml\n"
                  "    results:\n"
                  "    - variable: state\n"
                  "      values:\n" +
                  values16 + values2 +
                  "      - isError: true\n"
                  "        minTimeStatus: ERR_NONE\n"
                  "        maxTimeStatus: ERR_MAX\n"
                  "        totalTimeStatus: ERR_NONE\n"
                  "        hitsStatus: ERR_NONE\n"
                  "        measuredProfilerResults:\n"
                  "        - measuredValue: 3\n"
                  "          isError: false\n" +
                  entryOf("40") +
                  "        - measuredValue: 4\n"
                  "          isError: true\n" +
                  entryOf("60") +
                  "...\n",
              yamlReport(result));

    EXPECT_EQ(shortHead("t6", true) +
              "  dataProfiler:\n"
              "  - variable: state\n"
              "    values:\n"
              "    - specifiedValue: 16\n"
              "      measuredProfilerResults:\n"
              "      - measuredValue: 16\n"
              "        isError: true\n"
              "        minTime: true\n"
              "        maxTime: true\n"
              "        totalTime:\n"
              "          expected: [0, 100]\n"
              "          measured: [150, ERR_MAX]\n"
              "        hits: true\n"
              "    - specifiedValue: 2\n"
              "      measuredProfilerResults:\n"
              "      - minTime: true\n"
              "        maxTime: true\n"
              "        totalTime: true\n"
              "        hits:\n"
              "          expected: [1, 5]\n"
              "          measured: [0, ERR_MIN]\n"
              "    - measuredProfilerResults:\n"
              "      - measuredValue: 4\n"
              "        isError: true\n"
              "        minTime: true\n"
              "        maxTime:\n"
              "          expected: [0, 50]\n"
              "          measured: [60, ERR_MAX]\n"
              "        totalTime: true\n"
              "        hits: true\n"
              "...\n",
              yamlReport(result, Form::errorsOnly));
}

TEST(CTestResultReportTest, TraceFilesAreNamedAlsoForAFailedRun)
{
    auto spec = CTestSpecification::parseTestSpec("id: t7\n"
                                                  "func: [add]\n"
                                                  "trace:\n"
                                                  "  document: t.trd\n"
                                                  "  exportFile: t.xml\n");
    CTestResult result(spec, "Timeout!");

    std::string yaml = yamlReport(result);
    EXPECT_EQ("  isProfilerDataError: false\n"
              "  trace:\n"
              "    files:\n"
              "      document: t.trd\n"
              "      exportFile: t.xml\n"
              "...\n",
              yaml.substr(yaml.find("  isProfilerDataError")));
}
