#include <gtest/gtest.h>

#include <string>

#include "CTestReportConfig.h"
#include "SectionHostSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::parseFailure;
using kestrix_test::SectionHost;
using kestrix_test::yamlOf;

namespace {

/// The section writes its own key, so the host only opens the root mapping.
class ReportHost : public SectionHost<CTestReportConfig> {
public:
    ReportHost() : SectionHost<CTestReportConfig>("reportConfig", false) {}
};

std::string refusal(const std::string& text)
{
    ReportHost host;
    return parseFailure(host, text).message;
}

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

    EXPECT_EQ(CTestReportConfig::rcErrorsOnly, report.getReportContents());
    EXPECT_EQ(CTestReportConfig::ofYaml, report.getOutputFormat());
    EXPECT_EQ("report.yaml", report.getFileName());
    EXPECT_EQ("full.xslt", report.getXsltForFullReport());
    EXPECT_EQ("errors.xslt", report.getSelectedXsltFileName());
    EXPECT_TRUE(report.isIncludeTestSpec());
    EXPECT_FALSE(report.isUseCustomTime());
    StrStrMap info;
    report.getUserInfo(info);
    EXPECT_EQ((StrStrMap{{"\"board\"", "rev 2"}, {"date", "2026"}, {"tester", "someone"}}), info)
        << "sorted by key; expression texts";

    EXPECT_EQ(FULL_REPORT, yamlOf(host)) << "testInfo keeps the order of the file";
    EXPECT_EQ(FULL_REPORT, report.toString());
}

TEST(CTestReportConfig, WritesAnEmptyTestInfoInANonEmptySection)
{
    ReportHost host;
    CYAMLUtil::parseYAML(host, "reportConfig: {fileName: r.xml}");
    EXPECT_EQ("reportConfig:\n  fileName: r.xml\n  testInfo: {}\n", yamlOf(host))
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
    report.setReportContents(CTestReportConfig::rcFull);
    EXPECT_EQ("f.xsl", report.getSelectedXsltFileName());
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
    EXPECT_EQ("reportConfig:\n"
              "  outFormat: xml\n"
              "  fileName: \"out.xml\"\n"
              "  isIncludeTestSpec: false\n"
              "  useCustomTime: true\n"
              "  testInfo:\n"
              "    b: 2\n"
              "    a: \"x y\"\n"
              "    c: 3\n",
              report.toString());

    EXPECT_EQ("Map item with this key is already defined. Duplicates are not allowed!\n  data:\n    key: a\n",
              kestrix_test::failureOf<IllegalArgumentException>([&] { report.addUserInfo("a", "1"); }));
    EXPECT_THROW(report.setUserInfo("{a: 1, a: 2}"), ParserException);
    EXPECT_THROW(report.setFileName("a, b"), ParserException);
    StrStrMap info;
    report.getUserInfo(info);
    EXPECT_EQ((StrStrMap{{"a", "\"x y\""}, {"b", "2"}, {"c", "3"}}), info) << "refused texts change nothing";
    EXPECT_EQ("out.xml", report.getFileName());

    EXPECT_THROW(report.setOutputFormat(static_cast<CTestReportConfig::EOutputFormat>(5)), IllegalArgumentException);
    EXPECT_EQ(CTestReportConfig::ofXml, report.getOutputFormat());
}

TEST(CTestReportConfig, UserInfoSetterKeepsTheStyleOfTheFile)
{
    ReportHost host;
    CYAMLUtil::parseYAML(host, "reportConfig:\n  testInfo: &i {a: 1}\n");
    host.section.setUserInfo("z: 9\ny: 8\n");
    EXPECT_EQ("reportConfig:\n  testInfo: &i {z: 9, y: 8}\n", yamlOf(host));
}

TEST(CTestReportConfig, AssignCopiesDeeply)
{
    ReportHost host;
    CYAMLUtil::parseYAML(host, FULL_REPORT);
    CTestReportConfig copy;
    copy.assign(host.section);
    EXPECT_EQ(FULL_REPORT, copy.toString());

    copy.addUserInfo("extra", "1");
    copy.setFileName("other");
    EXPECT_EQ(FULL_REPORT, host.section.toString()) << "the source is not shared";
}

TEST(CTestReportConfig, RefusesRepeatedKeysAndWrongShapes)
{
    ReportHost host;
    auto failure = parseFailure(host, "reportConfig:\n  fileName: a\n  fileName: b\n");
    EXPECT_EQ("Data already defined in this specification: fileName", failure.message);
    EXPECT_EQ("[Line: 4  Col: 0]", failure.position);

    EXPECT_EQ("Data already defined in this specification: testInfo",
              refusal("reportConfig:\n  testInfo: {a: 1}\n  testInfo: {b: 2}\n"));
    EXPECT_EQ("Data already defined in this specification: outFormat",
              refusal("reportConfig: {outFormat: xml, outFormat: yaml}"));
    EXPECT_EQ("Invalid string value for enum : 'pdf'", refusal("reportConfig: {outFormat: pdf}"));
    EXPECT_EQ("Unknown tag in the main section of 'reportConfig': other", refusal("reportConfig: {other: 1}"));
    EXPECT_EQ("Mapping not allowed or invalid tag!", refusal("reportConfig: {fileName: {a: 1}}"));
    EXPECT_EQ("Sequence not allowed in 'reportConfig' section!", refusal("reportConfig: {fileName: [a]}"));
    EXPECT_EQ("Nested maps are not allowed!", refusal("reportConfig: {testInfo: {a: {b: 1}}}"));
}

TEST(CTestReportConfig, RefusesSequenceEvents)
{
    CTestReportConfig report;
    kestrix_test::ParsedEvents events("[x]");
    EXPECT_EQ("Sequence scalar not allowed in 'reportConfig' section!\n",
              kestrix_test::failureOf<ParserException>([&] { report.sequenceValue(events.get(YAML_SCALAR_EVENT)); }));
    EXPECT_EQ("Sequence end not allowed in 'reportConfig' section!\n",
              kestrix_test::failureOf<ParserException>([&] { report.sequenceEnd(); }));
}
