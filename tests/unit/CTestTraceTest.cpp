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

} // namespace

TEST_F(TraceFixture, RoundTripsKeepValuesKeyOrderAndStyles)
{
    // Texts are written back from the fields, so the round trips also check where each key is kept.
    const char* const fullBlock = "trace:\n  runMode: start\n  document: trace1\n  openMode: w\n"
                                  "  isSaveAfterTest: true\n  isCloseAfterTest: true\n  trigger: Trigger0\n"
                                  "  exportFormat: CSV\n  exportFile: trace1.csv\n";
    parse(fullBlock);
    EXPECT_EQ(fullBlock, text());
    EXPECT_TRUE(trace.isSaveAfterTest());
    EXPECT_EQ("CSV", trace.getExportFormat());

    const std::pair<const char*, const char*> cases[] = {
        {"trace:\n  exportFile: e.bin\n  trigger: T\n  isCloseAfterTest: no\n  document: d\n",
         "trace:\n  document: d\n  isCloseAfterTest: no\n  trigger: T\n  exportFile: e.bin\n"},
        {"trace: &tr !blk {document: \"doc, 1\", trigger: 'T', exportFile: &f out.txt}\n",
         "trace: &tr !blk {document: \"doc, 1\", trigger: 'T', exportFile: &f out.txt}\n"},
    };
    for (const auto& c : cases) {
        KeyHost<CTestTrace> one("trace");
        CYAMLUtil::parseYAML(one, c.first);
        EXPECT_EQ(c.second, toYaml(one));
    }
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
    EXPECT_EQ("trace:\n  runMode: off\n", toYaml(off));
}

TEST_F(TraceFixture, ARepeatedKeyKeepsTheLastValueAndASecondBlockIsRefused)
{
    const auto failure = parseFailure(host, "trace:\n  openMode: u\n  openMode: r\n  document: a\ntrace:\n  document: b\n");
    EXPECT_EQ("No mappings allowed in the main section!", failure.message);
    EXPECT_EQ("[Line: 6  Col: 11]", failure.position);
    EXPECT_EQ("r", trace.getOpenMode());
    EXPECT_EQ("a", trace.getDocumentFileName());
}

TEST(CTestTrace, RefusalsNameTheKeyOrValueAndThePlace)
{
    // The parser names the place it has read up to: the token behind the fault.
    expectRefusals<KeyHost<CTestTrace>>(
        {
            {"trace: 5\nother: 1\n", "Invalid section type for mapping. Key: '':   Section: 0", "[Line: 2  Col: 0]"},
            {"trace:\n  document: d\n  Document: e\n  trigger: t\n",
             "Unknown tag in the main section of 'trace': Document", "[Line: 4  Col: 2]"},
            {"trace:\n  extra:\n    a: 1\n", "No mappings allowed in the main section!", "[Line: 3  Col: 6]"},
            {"trace:\n  document: [a]\n", "Sequence not allowed in 'trace' section!", "[Line: 2  Col: 13]"},
            {"trace:\n  openMode: x\n  document: d\n",
             "Invalid open mode for trace document. Should be 'u', 'w', or 'a'.", "[Line: 3  Col: 2]"},
            {"trace:\n  openMode: ''\n", "Invalid open mode for trace document. Should be 'u', 'w', or 'a'.",
             "[Line: 2  Col: 14]"},
            {"trace:\n  exportFormat: csv\n", "Invalid string value for enum : 'csv'", "[Line: 3  Col: 0]"},
            {"trace:\n  runMode: resume\n", "Invalid string value for enum : 'resume'", "[Line: 3  Col: 0]"},
            {"trace:\n  isSaveAfterTest: on\n",
             "Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: on",
             "[Line: 3  Col: 0]"},
        },
        "trace");
    KeyHost<CTestTrace> host("trace");
    EXPECT_TRUE(parseFailure(host, "trace:\n  openMode: x\n").has("openMode: x"));
    EXPECT_EQ("", host.section.getOpenMode());
}

TEST(CTestTrace, RunModeSetters)
{
    CTestTrace trace(nullptr);
    trace.setRunMode(CTestTrace::rmStart);
    EXPECT_EQ("Invalid string value for enum : 'Start'\n",
              failureOf<IllegalArgumentException>([&] { trace.setRunMode("Start"); }));
    EXPECT_EQ("Invalid trace 'ERunMode' enum value!\n",
              failureOf<IllegalArgumentException>([&] { trace.setRunMode(static_cast<CTestTrace::ERunMode>(2)); }));
    EXPECT_EQ(CTestTrace::rmStart, trace.getRunMode());

    trace.setRunMode("");
    EXPECT_EQ(CTestTrace::rmOff, trace.getRunMode());
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
}
