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

std::string xmlReport(const CTestResult& result, Form form = Form::full)
{
    auto stream = std::make_shared<CStringStream>();
    return report(EmitterFactory::createXmlEmitter(stream), stream, result, form, nullptr);
}

std::shared_ptr<CTestReportConfig> reportConfig(const std::string& yaml)
{
    auto config = std::make_shared<CTestReportConfig>();
    CYAMLUtil::parseYAML(*config, yaml);
    return config;
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

/// One coverage item of the full form.
std::string item(const std::string& name, const std::string& expected, const std::string& rel,
                 const std::string& abs)
{
    return "      " + name + ":\n        expected: " + expected + "\n        measuredRel: " + rel +
           "\n        measuredAbs: " + abs + "\n";
}

/// The judgement of one profiler result: `lead` on the first line, `pad` on the others.
std::string statuses(const std::string& lead, const std::string& pad, bool isError, const std::string& minTime,
                     const std::string& maxTime, const std::string& totalTime, const std::string& hits)
{
    return lead + "isError: " + (isError ? "true" : "false") + "\n" + pad + "minTimeStatus: " + minTime + "\n" + pad + "maxTimeStatus: " + maxTime +
           "\n" + pad + "totalTimeStatus: " + totalTime + "\n" + pad + "hitsStatus: " + hits + "\n";
}

/// One measured parameter against its limits, indented by `pad` (`lead` replaces it on the first line).
std::string limits(const std::string& pad, const std::string& name, const std::string& expected,
                   const std::string& measured, const std::string& lead = "")
{
    return (lead.empty() ? pad : lead) + name + ":\n" + pad + "  expected: [" + expected + "]\n" + pad +
           "  measured: [" + measured + "]\n";
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

const char* const T1_SPEC = "id: t1\ndesc: adds\nfunc: [add]\n";

} // namespace

TEST(CTestResultReportTest, FailedExpressionInXmlErrorsOnly)
{
    CTestResult result(CTestSpecification::parseTestSpec(T1_SPEC), StrVector{"a == 3\n    a = 5"}, {}, {}, {});
    const std::string diffs = "          <expressionDiffs>\n"
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
                              "          </expressionDiffs>\n";
    const std::string identity = "          <testId>t1</testId>\n          <function>add</function>\n";

    EXPECT_EQ(xmlDoc(identity + "          <isError>1</isError>\n" + diffs), xmlReport(result, Form::errorsOnly));
}

TEST(CTestResultReportTest, FailedExpressionsInYaml)
{
    auto spec = CTestSpecification::parseTestSpec("id: t1\nfunc: [add]\ntags: [unit, math]\n");
    // The first held; the second names two variables; the third has no variable at all.
    CTestResult result(spec, StrVector{"", "a == b\n    a = 1\n    b = 2", "0 == 1\n"}, {}, {}, {});
    const std::string diffs = "  expressionDiffs:\n"
                              "  - expect: a == b\n"
                              "    targetValues:\n"
                              "    - ! '    a = 1'\n"
                              "    - ! '    b = 2'\n"
                              "  - expect: 0 == 1\n"
                              "    targetValues: []\n"
                              "...\n";
    EXPECT_EQ(head("t1", "add", "", flags(true, true, false, false, false), "unit, math") + diffs, yamlReport(result));

    result.addEnvironmentInfo("user", "<me & you>");
    result.addEnvironmentInfo("host", "pc1");
    EXPECT_EQ(shortHead("t1", true) +
                  "  tests: ! 'id: t1\n\n"
                  "    tags: [unit, math]\n\n"
                  "    func: [add]\n\n"
                  "    '\n"
                  "  environment:\n"
                  "    user: <me & you>\n"
                  "    host: pc1\n" + diffs,
              yamlReport(result, Form::errorsOnly, reportConfig("{isIncludeTestSpec: true}")));
}

TEST(CTestResultReportTest, ResultsWithNoDetailToReport)
{
    auto spec = CTestSpecification::parseTestSpec(T1_SPEC);
    auto traced = CTestSpecification::parseTestSpec("id: t7\nfunc: [add]\ntrace:\n  document: t.trd\n"
                                                    "  exportFile: t.xml\n");
    CTestResult passed(spec, StrVector{""}, {}, {}, {});
    passed.addEnvironmentInfo("user", "me");
    const std::string none = "...\n";
    const std::string environment = "  environment:\n    user: me\n...\n";
    const struct {
        CTestResult result;
        std::string full;
        std::string shortForm;
    } rows[] = {
        // The trace files are named also for a failed run.
        {CTestResult(traced, "Target not responding!"),
         head("t7", "add", "", flags(true, false, false, false, false, "Target not responding!")) +
             "  trace:\n    files:\n      document: t.trd\n      exportFile: t.xml\n" + none,
         shortHead("t7", true) + none},
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
    auto spec = CTestSpecification::parseTestSpec("id: t2\nfunc: [add]\ncoverage:\n  document: cov1\n"
                                                  "  exportFile: cov.html\n  statistics:\n"
                                                  "  - {func: add, code: 100, both: 25}\n");
    StrCoverageTestResultsMap coverage;
    // Half the bytes; 1 of 4 branches executed, taken, never both ways.
    coverage["add"] = CCoverageTestResult(CCoverageTestExpected(*spec->getCoverage().getStatistics(0)),
                                          CCoverageStatistic(40, 20, 4, 1, 1, 0, 0));
    CTestResult result(spec, StrVector(), coverage, {}, {});

    EXPECT_EQ(head("t2", "add", "", flags(true, false, true, false, false)) +
                  "  coverage:\n"
                  "    files:\n"
                  "      document: cov1\n"
                  "      exportFile: cov.html\n"
                  "    results:\n"
                  "    - function: add\n"
                  "      isError: true\n"
                  "      isBytesExecutedError: true\n"
                  "      isBranchesExecutedError: false\n"
                  "      isBranchesTakenError: false\n"
                  "      isBranchesNotTakenError: false\n"
                  "      isBranchesBothError: true\n"
                  "      bytesAll: 40\n"
                  "      branchesAll: 4\n" +
                  item("bytesExecuted", "1", "0.5", "20") + item("branchesExecuted", "0", "0.25", "1") +
                  item("branchesTaken", "0", "0.25", "1") + item("branchesNotTaken", "0", "0", "0") +
                  item("branchesBoth", "0.25", "0", "0") + "...\n",
              yamlReport(result));

    // The short form names only the items in error.
    EXPECT_EQ(shortHead("t2", true) +
              "  coverage:\n"
              "  - function: add\n"
              "    bytesExecuted:\n"
              "      expected: 1\n"
              "      measuredRel: 0.5\n"
              "    branchesBoth:\n"
              "      expected: 0.25\n"
              "      measuredRel: 0\n"
              "...\n",
              yamlReport(result, Form::errorsOnly));
}

TEST(CTestResultReportTest, CodeProfilerReport)
{
    auto spec = CTestSpecification::parseTestSpec("id: t3\nfunc: [add]\nprofiler:\n  codeAreas:\n"
                                                  "  - {name: add, hits: [5, 10]}\n  - {name: sub, hits: [0, 10]}\n");
    // "sub" meets its expectation: the short form leaves it out.
    CTestResult result(spec, StrVector(), {},
                       codeResults(*spec, {{"add", CProfilerStatistic(7, 0, 370, 130, 120, 3)},
                                           {"sub", CProfilerStatistic(8, 0, 10, 10, 10, 1)}}),
                       {});

    const std::string pad = "        ";
    EXPECT_EQ(head("t3", "add", "", flags(true, false, false, true, false)) +
                  "  codeProfiler:\n"
                  "    results:\n"
                  "    - function: add\n" +
                  statuses("      ", "      ", true, "ERR_NONE", "ERR_NONE", "ERR_NONE", "ERR_MIN") +
                  "      measuredProfilerResults:\n" +
                  limits(pad, "minTime", "0, 0", "120, ERR_NONE", "      - ") +
                  limits(pad, "maxTime", "0, 0", "130, ERR_NONE") + limits(pad, "totalTime", "0, 0", "370, ERR_NONE") +
                  limits(pad, "hits", "5, 10", "3, ERR_MIN") +
                  "    - function: sub\n" +
                  statuses("      ", "      ", false, "ERR_NONE", "ERR_NONE", "ERR_NONE", "ERR_NONE") +
                  "      measuredProfilerResults:\n" +
                  limits(pad, "minTime", "0, 0", "10, ERR_NONE", "      - ") +
                  limits(pad, "maxTime", "0, 0", "10, ERR_NONE") + limits(pad, "totalTime", "0, 0", "10, ERR_NONE") +
                  limits(pad, "hits", "0, 10", "1, ERR_NONE") + "...\n",
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

TEST(CTestResultReportTest, ProfilerOffWritesNoCodeProfilerPart)
{
    auto spec = CTestSpecification::parseTestSpec("id: t5\nfunc: [add]\nprofiler:\n  runMode: off\n"
                                                  "  codeAreas:\n  - {name: add, hits: [1, 1]}\n");
    // An area that was never measured is judged all zero, so expected hits fail.
    CTestResult result(spec, StrVector(), {}, codeResults(*spec, {}), {});
    EXPECT_EQ(head("t5", "add", "", flags(true, false, false, true, false)) + "...\n", yamlReport(result));
    // The short form tells the error whatever the run mode.
    EXPECT_NE(std::string::npos, yamlReport(result, Form::errorsOnly).find("  codeProfiler:\n  - function: add\n"));
}

TEST(CTestResultReportTest, DataProfilerReport)
{
    auto spec = CTestSpecification::parseTestSpec("id: t6\nfunc: [add]\nprofiler:\n  outFile: ${dir}/prof.yaml\n"
                                                  "  dataAreas:\n  - {name: state, value: 0x10, hits: [1, 5]}\n"
                                                  "  - {name: state, maxTime: [0, 50]}\n");
    const ProfilerAreasVector& areas = spec->getProfiler().getDataAreas();
    ProfilerTestResultsVector state;
    state.emplace_back(*areas[0], false);
    state.emplace_back(*areas[1], CProfilerStatistic(1, 3, 40, 40, 40, 1), false);
    state.back().addMeasuredResults(CProfilerStatistic(1, 4, 60, 60, 60, 1));
    CTestResult result(spec, StrVector(), {}, {}, {{"state", state}});
    auto config = reportConfig("{testInfo: {dir: out}}");

    // The area never hit tells only its hits; the area without a value collects 3 and 4.
    const std::string pad = "          ";
    auto entryOf = [&pad](const std::string& time) {
        return limits(pad, "minTime", "0, 0", time + ", ERR_NONE") + limits(pad, "maxTime", "0, 50", time + ", ERR_MAX") +
               limits(pad, "totalTime", "0, 0", time + ", ERR_NONE") + limits(pad, "hits", "0, 0", "1, ERR_NONE");
    };
    // The output file, with the report's variables, is named in the code profiler part too.
    EXPECT_EQ(head("t6", "add", "", flags(true, false, false, false, true)) +
                  "  codeProfiler:\n"
                  "    files:\n"
                  "      outputFile: out/prof.yaml\n"
                  "  dataProfiler:\n"
                  "    files:\n"
                  "      outputFile: out/prof.yaml\n"
                  "    results:\n"
                  "    - variable: state\n"
                  "      values:\n" +
                  statuses("      - ", "        ", true, "ERR_NONE", "ERR_NONE", "ERR_NONE", "ERR_MIN") +
                  "        specifiedValue: 16\n"
                  "        measuredProfilerResults:\n"
                  "        - minTime: true\n"
                  "          maxTime: true\n"
                  "          totalTime: true\n" +
                  limits(pad, "hits", "1, 5", "0, ERR_MIN") +
                  statuses("      - ", "        ", true, "ERR_NONE", "ERR_MAX", "ERR_NONE", "ERR_NONE") +
                  "        measuredProfilerResults:\n"
                  "        - measuredValue: 3\n"
                  "          isError: false\n" +
                  entryOf("40") +
                  "        - measuredValue: 4\n"
                  "          isError: true\n" +
                  entryOf("60") + "...\n",
              yamlReport(result, Form::full, config));

    EXPECT_EQ(shortHead("t6", true) +
              "  dataProfiler:\n"
              "  - variable: state\n"
              "    values:\n"
              "    - specifiedValue: 16\n"
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

    // Without a report config the variable is unknown; nothing of the test is written.
    auto stream = std::make_shared<CStringStream>();
    EXPECT_THROW(result.serialize(EmitterFactory::createXmlEmitter(stream), nullptr), IException);
    EXPECT_EQ("", stream->getString());
}
