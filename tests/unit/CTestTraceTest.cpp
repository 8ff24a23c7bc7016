#include <gtest/gtest.h>

#include "CTestTrace.h"
#include "SectionTestSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

/// A trace section read from a test text with the root key "trace".
struct TraceFixture : public ::testing::Test {
    KeyHost<CTestTrace> host{"trace"};
    CTestTrace& trace = host.section;

    void parse(const std::string& text) { CYAMLUtil::parseYAML(host, text); }
    std::string text() { return toYaml(host); }
};

const char* const FULL_BLOCK = "trace:\n"
                               "  runMode: start\n"
                               "  document: trace1\n"
                               "  openMode: w\n"
                               "  isSaveAfterTest: true\n"
                               "  isCloseAfterTest: true\n"
                               "  trigger: Trigger0\n"
                               "  exportFormat: CSV\n"
                               "  exportFile: trace1.csv\n";

} // namespace

TEST_F(TraceFixture, FullBlockIsReadAndWrittenBackAlike)
{
    parse(FULL_BLOCK);
    // Texts are written back from the fields, so the round trip also checks where each key is kept.
    EXPECT_EQ(FULL_BLOCK, text());
    EXPECT_EQ(CTestTrace::rmStart, trace.getRunMode());
    EXPECT_FALSE(trace.isDefaultRunMode());
    EXPECT_TRUE(trace.isSaveAfterTest());
    EXPECT_TRUE(trace.isCloseAfterTest());
    EXPECT_EQ("CSV", trace.getExportFormat());
}

TEST_F(TraceFixture, KeysInAnyOrderAreWrittenInFixedOrder)
{
    parse("trace:\n  exportFile: e.bin\n  trigger: T\n  isCloseAfterTest: no\n  document: d\n");
    EXPECT_EQ("trace:\n  document: d\n  isCloseAfterTest: no\n  trigger: T\n  exportFile: e.bin\n", text());
    EXPECT_EQ("no", trace.getCloseAfterTest());
    EXPECT_FALSE(trace.isCloseAfterTest());
    EXPECT_EQ("", trace.getSaveAfterTest());
}

TEST_F(TraceFixture, AnchorTagQuotingAndFlowStyleSurviveARoundTrip)
{
    const std::string input = "trace: &tr !blk {document: \"doc, 1\", trigger: 'T', exportFile: &f out.txt}\n";
    parse(input);
    EXPECT_EQ(input, text());
    KeyHost<CTestTrace> again("trace");
    CYAMLUtil::parseYAML(again, input);
    EXPECT_EQ(input, toYaml(again));
}

TEST_F(TraceFixture, RunModeOfANewAReadAndAnOffBlock)
{
    EXPECT_EQ(CTestTrace::rmOff, trace.getRunMode());
    EXPECT_TRUE(trace.isEmpty());

    parse("trace:\n  document: d\n");
    EXPECT_EQ(CTestTrace::rmStart, trace.getRunMode());
    EXPECT_TRUE(trace.isDefaultRunMode());
    EXPECT_EQ("trace:\n  document: d\n", text());

    KeyHost<CTestTrace> off("trace");
    CYAMLUtil::parseYAML(off, "trace:\n  runMode: off\n");
    EXPECT_EQ(CTestTrace::rmOff, off.section.getRunMode());
    EXPECT_FALSE(off.section.isDefaultRunMode());
    EXPECT_FALSE(off.section.isEmpty());
    EXPECT_EQ("trace:\n  runMode: off\n", toYaml(off));
}

TEST_F(TraceFixture, ARepeatedKeyKeepsTheLastValueAndASecondBlockIsRefused)
{
    parse("trace:\n  openMode: u\n  openMode: r\n  document: a\n  document: b\n");
    EXPECT_EQ("r", trace.getOpenMode());
    EXPECT_EQ("b", trace.getDocumentFileName());

    KeyHost<CTestTrace> twice("trace");
    const auto failure = parseFailure(twice, "trace:\n  document: a\ntrace:\n  document: b\n");
    EXPECT_EQ("No mappings allowed in the main section!", failure.message);
    EXPECT_EQ(0u, failure.position.find("[Line: 4")) << failure.position;
    EXPECT_EQ("a", twice.section.getDocumentFileName());
}

TEST(CTestTrace, RefusalsNameTheKeyOrValueAndThePlace)
{
    // The parser names the place it has read up to: the token behind the fault.
    expectRefusals(
        {
            {"trace: 5\nother: 1\n", "Invalid section type for mapping. Key: '':   Section: 0", "[Line: 2  Col: 0]"},
            {"trace:\n  document: d\n  Document: e\n  trigger: t\n",
             "Unknown tag in the main section of 'trace': Document", "[Line: 4  Col: 2]"},
            {"trace:\n  extra:\n    a: 1\n", "No mappings allowed in the main section!", "[Line: 3  Col: 6]"},
            {"trace:\n  document: [a]\n", "Sequence not allowed in 'trace' section!", "[Line: 2  Col: 13]"},
            {"trace:\n  openMode: x\n  document: d\n",
             "Invalid open mode for trace document. Should be 'u', 'w', or 'a'.", "[Line: 3  Col: 2]"},
            {"trace:\n  exportFormat: csv\n", "Invalid string value for enum : 'csv'", "[Line: 3  Col: 0]"},
            {"trace:\n  runMode: resume\n", "Invalid string value for enum : 'resume'", "[Line: 3  Col: 0]"},
            {"trace:\n  isSaveAfterTest: on\n",
             "Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: on",
             "[Line: 3  Col: 0]"},
        },
        freshHost<CTestTrace>("trace"));
    KeyHost<CTestTrace> host("trace");
    EXPECT_TRUE(parseFailure(host, "trace:\n  openMode: x\n").has("openMode: x"));
    EXPECT_EQ("", host.section.getOpenMode());
}

TEST(CTestTrace, RunModeSetters)
{
    CTestTrace trace(nullptr);
    trace.setRunMode("off");
    EXPECT_FALSE(trace.isDefaultRunMode());
    EXPECT_FALSE(trace.isEmpty());
    trace.setRunMode(CTestTrace::rmStart);
    EXPECT_EQ(CTestTrace::rmStart, trace.getRunMode());

    EXPECT_EQ("Invalid string value for enum : 'Start'\n",
              failureOf<IllegalArgumentException>([&] { trace.setRunMode("Start"); }));
    EXPECT_EQ("Invalid trace 'ERunMode' enum value!\n",
              failureOf<IllegalArgumentException>([&] { trace.setRunMode(static_cast<CTestTrace::ERunMode>(2)); }));
    EXPECT_EQ(CTestTrace::rmStart, trace.getRunMode());

    trace.setRunMode("");
    EXPECT_EQ(CTestTrace::rmOff, trace.getRunMode());
    EXPECT_TRUE(trace.isDefaultRunMode());
    EXPECT_TRUE(trace.isEmpty());
    EXPECT_EQ("trace: {}\n", written("trace", trace));
}

TEST(CTestTrace, TextOpenModeAndBoolSetters)
{
    CTestTrace trace(nullptr);
    trace.setDocumentFileName("\"my doc, 2\"");
    trace.setTriggerName("'T1'");
    trace.setExportFileName("out.csv");
    trace.setSaveAfterTest(false);
    trace.setCloseAfterTest(true);
    EXPECT_EQ("my doc, 2", trace.getDocumentFileName());
    EXPECT_EQ("false", trace.getSaveAfterTest());
    EXPECT_EQ("trace:\n  document: \"my doc, 2\"\n  isSaveAfterTest: false\n  isCloseAfterTest: true\n"
              "  trigger: 'T1'\n  exportFile: out.csv\n",
              written("trace", trace));
    EXPECT_NE("no exception", failureOf<ParserException>([&] { trace.setDocumentFileName("a, b"); }));
    EXPECT_EQ("my doc, 2", trace.getDocumentFileName());

    trace.setOpenMode("a");
    EXPECT_EQ("Invalid open mode for trace document. Should be 'u', 'w', or 'a'.\n  data:\n    openMode: wr\n",
              failureOf<ParserException>([&] { trace.setOpenMode("wr"); }));
    EXPECT_EQ("a", trace.getOpenMode());

    CTestTrace cleared(nullptr);
    cleared.setExportFormat("csv");
    EXPECT_EQ("csv", cleared.getExportFormat()) << "the setter takes any text";
    cleared.setExportFormat("");
    cleared.setOpenMode("a");
    cleared.setOpenMode("");
    cleared.setCloseAfterTest(true);
    cleared.clearCloseAfterTest();
    cleared.setSaveAfterTest(true);
    cleared.clearSaveAfterTest();
    EXPECT_FALSE(cleared.isCloseAfterTest());
    EXPECT_EQ("", cleared.getCloseAfterTest());
    EXPECT_TRUE(cleared.isEmpty());
}

TEST(CTestTrace, AssignmentCopiesValuesAndKeepsTheOwner)
{
    KeyHost<CTestTrace> first("trace");
    KeyHost<CTestTrace> second("trace");
    first.section.setDocumentFileName("d");
    second.section = first.section;
    EXPECT_EQ("d", second.section.getDocumentFileName());
    EXPECT_EQ(&second, second.section.mappingEnd());
    EXPECT_EQ("d", CTestTrace(first.section).getDocumentFileName());
}
