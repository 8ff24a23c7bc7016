#include <gtest/gtest.h>

#include <string>

#include "CTestReportConfig.h"
#include "SectionTestSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

/// The section writes its own key, so the host only opens the root mapping.
struct ReportHost : public KeyHost<CTestReportConfig> {
    ReportHost() : KeyHost<CTestReportConfig>("reportConfig", false) {}
};

const char* const FULL_REPORT = "reportConfig:\n"
                                "  reportContents: errorsOnly\n"
                                "  outFormat: yaml\n"
                                "  fileName: 'report.yaml'\n"
                                "  xsltFull: full.xslt\n"
                                "  xsltErrors: errors.xslt\n"
                                "  isIncludeTestSpec: true\n"
                                "  useCustomTime: no\n"
                                "  testInfo:\n"
                                "    tester: someone\n"
                                "    \"board\": rev 2\n"
                                "    date: '2026'\n";

} // namespace

TEST(CTestReportConfig, ReadsAllKeysAndWritesThemBack)
{
    ReportHost host;
    CYAMLUtil::parseYAML(host, FULL_REPORT);
    const CTestReportConfig& report = host.section;
    EXPECT_EQ(CTestReportConfig::ofYaml, report.getOutputFormat());
    EXPECT_EQ("errors.xslt", report.getSelectedXsltFileName());
    EXPECT_FALSE(report.isUseCustomTime());
    StrStrMap info;
    report.getUserInfo(info);
    EXPECT_EQ((StrStrMap{{"\"board\"", "rev 2"}, {"date", "2026"}, {"tester", "someone"}}), info)
        << "sorted by key; expression texts";

    EXPECT_EQ(FULL_REPORT, toYaml(host)) << "testInfo keeps the order of the file";
    EXPECT_EQ(FULL_REPORT, report.toString());
}

TEST(CTestReportConfig, WritesAnEmptyTestInfoInANonEmptySection)
{
    ReportHost host;
    CYAMLUtil::parseYAML(host, "reportConfig: {fileName: r.xml}");
    EXPECT_EQ("reportConfig:\n  fileName: r.xml\n  testInfo: {}\n", toYaml(host))
        << "the block's own style is not used for writing";
    EXPECT_EQ(CTestReportConfig::rcFull, host.section.getReportContents());
    EXPECT_EQ(CTestReportConfig::ofXml, host.section.getOutputFormat());

    CTestReportConfig empty;
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_EQ("{}\n", empty.toString()) << "an empty section writes nothing";

    ReportHost onlyInfo;
    CYAMLUtil::parseYAML(onlyInfo, "reportConfig: {testInfo: {a: 1}}");
    EXPECT_FALSE(onlyInfo.section.isEmpty());
}

TEST(CTestReportConfig, SelectsTheStylesheetOfTheContents)
{
    CTestReportConfig report;
    report.setXsltForFullReport("f.xsl");
    report.setXsltForErrors("e.xsl");
    EXPECT_EQ("f.xsl", report.getSelectedXsltFileName()) << "full by default";
    report.setReportContents(CTestReportConfig::rcErrorsOnly);
    EXPECT_EQ("e.xsl", report.getSelectedXsltFileName());
}

TEST(CTestReportConfig, Setters)
{
    CTestReportConfig report(nullptr);
    report.setOutputFormat(CTestReportConfig::ofXml);
    report.setFileName("\"out.xml\"");
    report.setIncludeTestSpec(false);
    report.setUseCustomTime(true);
    report.setUserInfo("{b: 2, a: \"x y\"}");
    report.addUserInfo("c", "3");
    EXPECT_EQ("reportConfig:\n  outFormat: xml\n  fileName: \"out.xml\"\n  isIncludeTestSpec: false\n  useCustomTime: true\n"
              "  testInfo:\n    b: 2\n    a: \"x y\"\n    c: 3\n",
              report.toString());

    EXPECT_EQ("Map item with this key is already defined. Duplicates are not allowed!\n  data:\n    key: a\n",
              failureOf<IllegalArgumentException>([&] { report.addUserInfo("a", "1"); }));
    EXPECT_THROW(report.setUserInfo("{a: 1, a: 2}"), ParserException);
    EXPECT_THROW(report.setFileName("a, b"), ParserException);
    StrStrMap info;
    report.getUserInfo(info);
    EXPECT_EQ((StrStrMap{{"a", "\"x y\""}, {"b", "2"}, {"c", "3"}}), info) << "refused texts change nothing";
    EXPECT_EQ("out.xml", report.getFileName());

    EXPECT_THROW(report.setOutputFormat(static_cast<CTestReportConfig::EOutputFormat>(5)), IllegalArgumentException);
    EXPECT_EQ(CTestReportConfig::ofXml, report.getOutputFormat());
}

TEST(CTestReportConfig, UserInfoSetterKeepsTheStyleOfTheFileAndAssignCopiesDeeply)
{
    ReportHost host;
    CYAMLUtil::parseYAML(host, "reportConfig:\n  testInfo: &i {a: 1}\n");
    host.section.setUserInfo("z: 9\ny: 8\n");
    EXPECT_EQ("reportConfig:\n  testInfo: &i {z: 9, y: 8}\n", toYaml(host));

    CTestReportConfig copy;
    copy.assign(host.section);
    copy.addUserInfo("extra", "1");
    EXPECT_EQ("reportConfig:\n  testInfo: &i {z: 9, y: 8, extra: 1}\n", copy.toString());
    EXPECT_EQ("reportConfig:\n  testInfo: &i {z: 9, y: 8}\n", toYaml(host)) << "the source is not shared";
}

TEST(CTestReportConfig, RefusalsNameTheFaultAndItsPlace)
{
    expectRefusals<ReportHost>(
        {
            {"reportConfig:\n  fileName: a\n  fileName: b\n", "Data already defined in this specification: fileName",
             "[Line: 4  Col: 0]"},
            {"reportConfig:\n  testInfo: {a: 1}\n  testInfo: {b: 2}\n",
             "Data already defined in this specification: testInfo", "[Line: 3  Col: 11]"},
            {"reportConfig: {outFormat: xml, outFormat: yaml}", "Data already defined in this specification: outFormat",
             "[Line: 1  Col: 46]"},
            {"reportConfig: {outFormat: pdf}", "Invalid string value for enum : 'pdf'", "[Line: 1  Col: 29]"},
            {"reportConfig: {other: 1}", "Unknown tag in the main section of 'reportConfig': other", "[Line: 1  Col: 23]"},
            {"reportConfig: {fileName: {a: 1}}", "Mapping not allowed or invalid tag!", "[Line: 1  Col: 26]"},
            {"reportConfig: {fileName: [a]}", "Sequence not allowed in 'reportConfig' section!", "[Line: 1  Col: 26]"},
            {"reportConfig: {testInfo: {a: {b: 1}}}", "Nested maps are not allowed!", "[Line: 1  Col: 30]"},
        });
}

TEST(CTestReportConfig, RefusesSequenceEvents)
{
    CTestReportConfig report;
    ParsedEvents events("[x]");
    EXPECT_EQ("Sequence scalar not allowed in 'reportConfig' section!\n",
              failureOf<ParserException>([&] { report.sequenceValue(events.get(YAML_SCALAR_EVENT)); }));
    EXPECT_EQ("Sequence end not allowed in 'reportConfig' section!\n",
              failureOf<ParserException>([&] { report.sequenceEnd(); }));
}
