#include <gtest/gtest.h>

#include "CTestCoverage.h"
#include "SectionTestSupport.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

/// A coverage section read from a test text with the root key "coverage".
struct CoverageFixture : public ::testing::Test {
    KeyHost<CTestCoverage> host{"coverage"};
    CTestCoverage& coverage = host.section;

    void parse(const std::string& text) { CYAMLUtil::parseYAML(host, text); }
    std::string text() { return toYaml(host); }
};

const char* const FULL_BLOCK =
    "coverage:\n"
    "  runMode: resume\n"
    "  document: cov.trd\n"
    "  openMode: w\n"
    "  isSaveAfterTest: true\n"
    "  isCloseAfterTest: yes\n"
    "  rangeset: all\n"
    "  exportFormat: Review (HTML)\n"
    "  exportFile: cov.html\n"
    "  isDecisionCoverage: 0\n"
    "  bitmapFile: cov.bmp\n"
    "  statistics:\n"
    "  - func: main\n"
    "    code: 100\n"
    "    branches: 80\n"
    "    taken: 12.5\n"
    "    notTaken: 0\n"
    "    both: 1e1\n"
    "  - code: 50\n";

} // namespace

// Texts are written back from the fields, so the round trips also check where each key is kept.
TEST_F(CoverageFixture, FullBlockIsReadAndWrittenBackAlike)
{
    parse(FULL_BLOCK);
    EXPECT_EQ(FULL_BLOCK, text());
    EXPECT_TRUE(coverage.isCloseAfterTest()) << "yes";
    EXPECT_FALSE(coverage.isDecisionCoverage()) << "0";

    // Each mapping of the list is an item; numbers stay text and read as floats.
    ASSERT_EQ(2, coverage.getStatisticsSize());
    EXPECT_FLOAT_EQ(12.5f, coverage.getStatistics(0)->getBranchTaken());
    EXPECT_FLOAT_EQ(10.0f, coverage.getStatistics(0)->getBranchBoth());
    EXPECT_TRUE(coverage.getStatistics(1)->isDefaultFunction());
    EXPECT_FLOAT_EQ(0.0f, coverage.getStatistics(1)->getBranchExecuted());

    // Anchors, tags and styles survive too.
    const std::string input = "coverage: &c\n  document: 'my doc'\n  exportFormat: \"XML2\"\n"
                              "  statistics: &l !st [&s {code: 5}, !i {func: \"g\"}]\n";
    KeyHost<CTestCoverage> styled("coverage");
    CYAMLUtil::parseYAML(styled, input);
    EXPECT_EQ(input, toYaml(styled));
}

TEST_F(CoverageFixture, RunModeIsStartForABlockWithoutItAndRepeatedKeysKeepTheLast)
{
    EXPECT_EQ(CTestCoverage::rmOff, coverage.getRunMode());
    // An empty open mode passes here, unlike in the trace section.
    parse("coverage:\n  document: a\n  openMode: ''\n  openMode: r\n  document: d\n");
    EXPECT_EQ(CTestCoverage::rmStart, coverage.getRunMode());
    EXPECT_TRUE(coverage.isDefaultRunMode());
    EXPECT_EQ("coverage:\n  document: d\n  openMode: r\n", text());
}

TEST_F(CoverageFixture, RefusalsKeepWhatWasRead)
{
    auto f = parseFailure(host, "coverage:\n  runMode: off\n  exportFile: x\n");
    EXPECT_EQ("Illegal argument", f.desc);
    EXPECT_TRUE(f.has("At least 'document' tag should be specified for coverage!")) << f.context;
    EXPECT_EQ("x", coverage.getExportFileName());

    KeyHost<CTestCoverage> other("coverage");
    f = parseFailure(other, "coverage:\n  openMode: u\n  openMode: ab\n  document: d\n");
    EXPECT_TRUE(f.has("openMode: ab")) << f.context;
    EXPECT_TRUE(f.has("[Line: 4  Col: 2]")) << f.context;
    EXPECT_EQ("u", other.section.getOpenMode());
}

TEST(CTestCoverage, RefusalsNameTheKeyOrValueAndThePlace)
{
    expectRefusals<KeyHost<CTestCoverage>>(
        {
            {"coverage:\n  document: d\n  statistics: []\n", "Sequence not allowed for coverage statistics item: ''",
             "[Line: 3  Col: 16]"},
            {"coverage:\n  document: d\n  Statistics: 1\n", "Invalid item in coverage section: Statistics", "[Line: 3  Col: 13]"},
            {"coverage:\n  document: d\n  statistics:\n  - func: f\n    lines: 3\n",
             "Invalid item defined in coverage statistics: lines", "[Line: 5  Col: 10]"},
            {"coverage: 5\n", "Invalid section type for mapping. Key: '':   Section: 0", "[Line: 2  Col: 0]"},
            {"coverage:\n  statistics: 5\n", "Invalid section type for mapping. Key: 'statistics':   Section: 2",
             "[Line: 3  Col: 0]"},
            {"coverage:\n  document: [a]\n", "Sequence not allowed in 'coverage' section: document", "[Line: 2  Col: 13]"},
            {"coverage:\n  document: {a: 1}\n", "No mappings allowed in the main section!", "[Line: 2  Col: 13]"},
            {"coverage:\n  document: d\ncoverage:\n  document: e\n", "No mappings allowed in the main section!",
             "[Line: 4  Col: 11]"},
            {"coverage:\n  statistics:\n  - f\n", "Sequence not allowed for coverage statistics item: ''", "[Line: 4  Col: 0]"},
            {"coverage:\n  statistics:\n  - func: f\n  - g\n", "Sequence scalar not allowed in 'coverage' section: g",
             "[Line: 5  Col: 0]"},
            {"coverage:\n  statistics:\n  - func: {a: 1}\n", "Mapping not allowed at that point!", "[Line: 3  Col: 11]"},
            {"coverage:\n  statistics:\n  - func: [a]\n", "Sequence not allowed for coverage statistics item: 'func'",
             "[Line: 3  Col: 11]"},
            {"coverage:\n  openMode: x\n", "Invalid open mode for coverage document. Should be 'u', 'w', or 'a'.",
             "[Line: 3  Col: 0]"},
            {"coverage:\n  exportFormat: html\n", "Invalid string value for enum : 'html'", "[Line: 3  Col: 0]"},
            {"coverage:\n  isDecisionCoverage: True\n",
             "Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: True",
             "[Line: 3  Col: 0]"},
        },
        "coverage");

    // A number is checked where it is read; the message comes from the conversion.
    KeyHost<CTestCoverage> host("coverage");
    const auto f = parseFailure(host, "coverage:\n  document: d\n  statistics:\n  - func: f\n    code: abc\n    branches: 1\n");
    EXPECT_TRUE(f.has("Conversion from string to double failed, because string does not represent valid double value!"))
        << f.context;
    EXPECT_TRUE(f.has("string: abc")) << f.context;
    EXPECT_TRUE(f.has("[Line: 6  Col: 4]")) << f.context;
}

TEST(CTestCoverage, SettersWriteTheirValuesAndRefusedValuesChangeNothing)
{
    CTestCoverage coverage(nullptr);
    coverage.setRunMode(CTestCoverage::rmResume), coverage.setDocumentFileName("\"a, b\""), coverage.setOpenMode("a");
    coverage.setSaveAfterTest(false), coverage.setCloseAfterTest(true), coverage.setRangesetName("r1");
    coverage.setExportFormat("xml"), coverage.setExportFileName("e"), coverage.setDecisionCoverage(true);
    coverage.setBitmapFileName("b");

    EXPECT_EQ("Invalid coverage 'ERunMode' enum value!\n",
              failureOf<IllegalArgumentException>([&] { coverage.setRunMode(static_cast<CTestCoverage::ERunMode>(3)); }));
    EXPECT_EQ("Invalid string value for enum : 'on'\n",
              failureOf<IllegalArgumentException>([&] { coverage.setRunMode("on"); }));
    EXPECT_EQ("Invalid open mode for coverage document. Should be 'u', 'w', or 'a'.\n  data:\n    openMode: x\n",
              failureOf<ParserException>([&] { coverage.setOpenMode("x"); }));
    EXPECT_EQ(CTestCoverage::rmResume, coverage.getRunMode());
    EXPECT_EQ("a", coverage.getOpenMode());

    coverage.clearSaveAfterTest(), coverage.clearCloseAfterTest(), coverage.setRunMode(""), coverage.setOpenMode("");
    EXPECT_EQ("coverage:\n  document: \"a, b\"\n  rangeset: r1\n  exportFormat: xml\n  exportFile: e\n"
              "  isDecisionCoverage: true\n  bitmapFile: b\n",
              written("coverage", coverage));
}

TEST(CTestCoverage, StatisticsListOperationsAndIsEmptyIgnoresTheList)
{
    CTestCoverage coverage(nullptr);
    coverage.addStatistics()->setFunctionName("a");
    coverage.setDecisionCoverage(false);
    EXPECT_FALSE(coverage.isEmpty()) << "false is a value";
    coverage.clearDecisionCoverage();
    EXPECT_TRUE(coverage.isEmpty()) << "the list does not count";
    coverage.setDocumentFileName("d");
    coverage.addStatistics()->setFunctionName("b"), coverage.addStatistics()->setFunctionName("c");
    coverage.swapStatistics(0, 2), coverage.removeStatistics(1);
    EXPECT_EQ("coverage:\n  document: d\n  statistics:\n  - func: c\n  - func: a\n", written("coverage", coverage));

    EXPECT_EQ("No coverage statistics at the given index exists!\n  data:\n    index: 2\n    noOfStatistics: 2\n",
              failureOf<IndexOutOfBoundsException>([&] { coverage.getStatistics(2); }));
    EXPECT_THROW(coverage.swapStatistics(-1, 0), IndexOutOfBoundsException);
    EXPECT_EQ(2, coverage.getStatisticsSize());
}

TEST(CTestCoverage, CopiesAreDeepAndItemsBelongToTheCopy)
{
    KeyHost<CTestCoverage> owner("coverage"), otherOwner("coverage");
    CYAMLUtil::parseYAML(owner, "coverage:\n  document: d\n  statistics:\n  - code: 10\n");
    CTestCoverage copy(owner.section);
    copy.getStatistics(0)->setCodeExecuted("20");
    EXPECT_EQ("10", owner.section.getStatistics(0)->getBytesExecutedText());
    EXPECT_EQ(&copy, copy.getStatistics(0)->mappingEnd());

    CTestCoverage& assigned = otherOwner.section;
    assigned.addStatistics(), assigned.addStatistics();
    assigned = owner.section;
    ASSERT_EQ(1, assigned.getStatisticsSize());
    EXPECT_EQ(&assigned, assigned.getStatistics(0)->mappingEnd());
    EXPECT_EQ(&otherOwner, assigned.mappingEnd());
    EXPECT_EQ("coverage:\n  document: d\n  statistics:\n  - code: 10\n", toYaml(otherOwner));
}

TEST(CTestCoverageStatistics, NumberSetters)
{
    CTestCoverageStatistics item(nullptr);
    item.setCodeExecuted(""), item.setBranchExecuted(""), item.setBranchTaken(""), item.setBranchBoth("");
    item.setBranchNotTaken("5");
    EXPECT_EQ("s:\n  code: 0\n  branches: 0\n  taken: 0\n  notTaken: 5\n  both: 0\n", written("s", item));

    item.setBranchNotTaken("");
    EXPECT_EQ("s:\n  code: 0\n  branches: 0\n  taken: 0\n  both: 0\n", written("s", item));

    EXPECT_NE("no exception", failureOf<IllegalArgumentException>([&] { item.setCodeExecuted("abc"); }));
    EXPECT_EQ("0", item.getBytesExecutedText());
}

TEST(CTestCoverageStatistics, ConstructorFromAnEventIsInsideItsMapping)
{
    ParsedEvents events("&m {a: 1}");
    CTestCoverageStatistics item(nullptr, events.get(YAML_MAPPING_START_EVENT));
    EXPECT_EQ("Mapping not allowed at that point!\n",
              failureOf<ParserException>([&] { item.mappingStart(events.get(YAML_MAPPING_START_EVENT)); }));
    item.setFunctionName("f");
    EXPECT_EQ("s: &m {func: f}\n", written("s", item));
}
