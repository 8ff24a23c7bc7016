#include <gtest/gtest.h>

#include "CTestTrace.h"
#include "Exceptions.h"
#include "SectionTestSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;
using kestrix_test::parseFailure;
using kestrix_test::SectionHost;
using kestrix_test::written;

namespace {

/// A trace section read from a test text with the root key "trace".
struct TraceFixture : public ::testing::Test {
    SectionHost host{"trace"};
    CTestTrace trace{&host};

    TraceFixture() { host.setSection(&trace); }

    void parse(const std::string& text) { CYAMLUtil::parseYAML(host, text); }
    std::string text() { return written("trace", trace); }
};

const char* const FULL_BLOCK =
    "trace:\n"
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
    EXPECT_EQ(CTestTrace::rmStart, trace.getRunMode());
    EXPECT_FALSE(trace.isDefaultRunMode());
    EXPECT_EQ("trace1", trace.getDocumentFileName());
    EXPECT_EQ("w", trace.getOpenMode());
    EXPECT_TRUE(trace.isSaveAfterTest());
    EXPECT_TRUE(trace.isCloseAfterTest());
    EXPECT_EQ("Trigger0", trace.getTriggerName());
    EXPECT_EQ("CSV", trace.getExportFormat());
    EXPECT_EQ("trace1.csv", trace.getExportFileName());
    EXPECT_FALSE(trace.isEmpty());
    EXPECT_EQ(FULL_BLOCK, text());
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
    parse("trace: &tr !blk {document: \"doc, 1\", trigger: 'T', exportFile: &f out.txt}\n");
    const std::string first = text();
    EXPECT_EQ("trace: &tr !blk {document: \"doc, 1\", trigger: 'T', exportFile: &f out.txt}\n", first);

    SectionHost host2("trace");
    CTestTrace again(&host2);
    host2.setSection(&again);
    CYAMLUtil::parseYAML(host2, first);
    EXPECT_EQ(first, written("trace", again));
}

TEST_F(TraceFixture, RunModeOfANewAReadAndAnOffBlock)
{
    EXPECT_EQ(CTestTrace::rmOff, trace.getRunMode());
    EXPECT_TRUE(trace.isEmpty());

    parse("trace:\n  document: d\n");
    EXPECT_EQ(CTestTrace::rmStart, trace.getRunMode());
    EXPECT_TRUE(trace.isDefaultRunMode());
    EXPECT_EQ("trace:\n  document: d\n", text());

    SectionHost host2("trace");
    CTestTrace off(&host2);
    host2.setSection(&off);
    CYAMLUtil::parseYAML(host2, "trace:\n  runMode: off\n");
    EXPECT_EQ(CTestTrace::rmOff, off.getRunMode());
    EXPECT_FALSE(off.isDefaultRunMode());
    EXPECT_FALSE(off.isEmpty());
    EXPECT_EQ("trace:\n  runMode: off\n", written("trace", off));
}

TEST_F(TraceFixture, ARepeatedKeyKeepsTheLastValueAndOpenModeRPasses)
{
    parse("trace:\n  openMode: u\n  openMode: r\n  document: a\n  document: b\n");
    EXPECT_EQ("r", trace.getOpenMode());
    EXPECT_EQ("b", trace.getDocumentFileName());
}

TEST_F(TraceFixture, ASecondBlockIsRefused)
{
    const auto failure = parseFailure(host, "trace:\n  document: a\ntrace:\n  document: b\n");
    EXPECT_EQ("Illegal argument", failure.desc);
    EXPECT_TRUE(failure.has("No mappings allowed in the main section!")) << failure.context;
    EXPECT_TRUE(failure.has("[Line: 4")) << failure.context;
    EXPECT_EQ("a", trace.getDocumentFileName());
}

TEST_F(TraceFixture, RefusalsNameTheKeyOrValueAndThePlace)
{
    // The parser names the place it has read up to: the token behind the fault.
    const char* const cases[][3] = {
        {"trace: 5\nother: 1\n", "Invalid section type for mapping. Key: '':   Section: 0", "[Line: 2  Col: 0]"},
        {"trace:\n  document: d\n  Document: e\n  trigger: t\n", "Unknown tag in the main section of 'trace': Document",
         "[Line: 4  Col: 2]"},
        {"trace:\n  extra:\n    a: 1\n", "No mappings allowed in the main section!", "[Line: 3"},
        {"trace:\n  document: [a]\n", "Sequence not allowed in 'trace' section!", "[Line: 2"},
        {"trace:\n  openMode: x\n  document: d\n", "Invalid open mode for trace document. Should be 'u', 'w', or 'a'.",
         "[Line: 3  Col: 2]"},
        {"trace:\n  openMode: x\n", "openMode: x", "[Line: 3"},
        {"trace:\n  exportFormat: csv\n", "Invalid string value for enum : 'csv'", "[Line: 3"},
        {"trace:\n  runMode: resume\n", "Invalid string value for enum : 'resume'", "[Line: 3"},
        {"trace:\n  isSaveAfterTest: on\n",
         "Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: on", "[Line: 3"},
    };
    for (const auto& c : cases) {
        SectionHost fresh("trace");
        CTestTrace section(&fresh);
        fresh.setSection(&section);
        const auto failure = parseFailure(fresh, c[0]);
        EXPECT_EQ("Illegal argument", failure.desc);
        EXPECT_TRUE(failure.has(c[1])) << c[0] << " gave " << failure.context;
        EXPECT_TRUE(failure.has(c[2])) << c[0] << " gave " << failure.context;
        EXPECT_EQ("", section.getOpenMode());
    }
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

TEST(CTestTrace, TextSettersTakeYamlText)
{
    CTestTrace trace(nullptr);
    trace.setDocumentFileName("\"my doc, 2\"");
    trace.setTriggerName("'T1'");
    trace.setExportFileName("out.csv");
    EXPECT_EQ("my doc, 2", trace.getDocumentFileName());
    EXPECT_EQ("trace:\n  document: \"my doc, 2\"\n  trigger: 'T1'\n  exportFile: out.csv\n", written("trace", trace));

    EXPECT_NE("no exception", failureOf<ParserException>([&] { trace.setDocumentFileName("a, b"); }));
    EXPECT_EQ("my doc, 2", trace.getDocumentFileName());
}

TEST(CTestTrace, ExportFormatSetterStoresAnyText)
{
    CTestTrace trace(nullptr);
    trace.setExportFormat("csv");
    EXPECT_EQ("csv", trace.getExportFormat());
    EXPECT_FALSE(trace.isEmpty());
}

TEST(CTestTrace, OpenModeSetterChecksTheMode)
{
    CTestTrace trace(nullptr);
    trace.setOpenMode("a");
    EXPECT_EQ("Invalid open mode for trace document. Should be 'u', 'w', or 'a'.\n  data:\n    openMode: wr\n",
              failureOf<ParserException>([&] { trace.setOpenMode("wr"); }));
    EXPECT_EQ("a", trace.getOpenMode());
    trace.setOpenMode("");
    EXPECT_EQ("", trace.getOpenMode());
    EXPECT_TRUE(trace.isEmpty());
}

TEST(CTestTrace, BoolSettersAndClear)
{
    CTestTrace trace(nullptr);
    trace.setSaveAfterTest(false);
    trace.setCloseAfterTest(true);
    EXPECT_EQ("false", trace.getSaveAfterTest());
    EXPECT_EQ("trace:\n  isSaveAfterTest: false\n  isCloseAfterTest: true\n", written("trace", trace));

    trace.clearCloseAfterTest();
    trace.clearSaveAfterTest();
    EXPECT_FALSE(trace.isCloseAfterTest());
    EXPECT_EQ("", trace.getCloseAfterTest());
    EXPECT_TRUE(trace.isEmpty());
}

TEST(CTestTrace, AssignmentCopiesValuesAndKeepsTheOwner)
{
    SectionHost first("trace");
    SectionHost second("trace");
    CTestTrace source(&first);
    source.setDocumentFileName("d");
    CTestTrace target(&second);
    target = source;
    EXPECT_EQ("d", target.getDocumentFileName());
    EXPECT_EQ(&second, target.mappingEnd());

    const CTestTrace copy(source);
    EXPECT_EQ("d", copy.getDocumentFileName());
}
