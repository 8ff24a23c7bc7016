#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "CTestBench.h"
#include "CYAMLDocumentWriter.h"
#include "Exceptions.h"
#include "SectionTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

typedef std::shared_ptr<CTestBench> BenchPtr;

const char* const BENCH =
    "env:\n"
    "  workspace: project/demo.ws\n"
    "  autoConnect: true\n"
    "  initBeforeRun: true\n"
    "  defaultRetValName: rv\n"
    "reportConfig:\n"
    "  reportContents: full\n"
    "  outFormat: xml\n"
    "  fileName: report.xml\n"
    "  testInfo:\n"
    "    tester: someone\n"
    "tests:\n"
    "- id: t1\n"
    "  func: [add, [1, 2], rv]\n"
    "  expect:\n"
    "  - rv == 3\n"
    "- id: t2\n"
    "  func: [sub, [5, 2], rv]\n"
    "  expect:\n"
    "  - rv == 3\n";

std::string textOf(CTestBench& bench)
{
    return CYAMLDocumentWriter::toString(bench);
}

ParseFailure benchFailure(const std::string& text)
{
    return failureOf([&] { CTestBench::parse(text); });
}

} // namespace

TEST(CTestBench, FileIsLoadedSavedAndLoadedBackToTheSameText)
{
    const std::string in = ::testing::TempDir() + "bench_in.yaml";
    const std::string out = ::testing::TempDir() + "bench_out.yaml";
    std::ofstream(in) << BENCH;
    BenchPtr bench = CTestBench::load(in);
    EXPECT_EQ(BENCH, textOf(*bench));
    EXPECT_EQ("project/demo.ws", bench->getTestEnvironmentConfig()->getWorkspace());
    EXPECT_EQ("report.xml", bench->getTestReportConfig()->getFileName());
    EXPECT_TRUE(bench->getTestSpecification()->isEmptyExceptDerived());
    bench->getTestSpecification()->getDerivedTestSpec(1)->setRunFlag(false);
    bench->save(out);
    std::stringstream written;
    written << std::ifstream(out).rdbuf();
    std::string expected = BENCH;
    expected.replace(expected.find("- id: t2\n") + 9, 0, "  run: false\n");
    EXPECT_EQ(expected, written.str());
    EXPECT_EQ(expected, textOf(*CTestBench::load(out)));
    EXPECT_NO_THROW(bench->save("/nonexistent-dir/bench.yaml"));
    std::remove(in.c_str());
    std::remove(out.c_str());

    try {
        CTestBench::load(::testing::TempDir() + "no-such-bench.yaml");
        FAIL() << "no exception";
    } catch (const IException& e) {
        EXPECT_NE(std::string::npos, std::string(e.what()).find("Can not open file with test specification!"));
    }
}

TEST(CTestBench, EmptyFileGivesAnEmptyBenchWhoseMembersOutliveIt)
{
    for (const char* text : {"", "tests: []\n"}) {
        BenchPtr bench = CTestBench::parse(text);
        EXPECT_TRUE(bench->getTestEnvironmentConfig()->isEmpty());
        EXPECT_TRUE(bench->getTestReportConfig()->isEmpty());
        EXPECT_TRUE(bench->getTestSpecification()->isEmpty());
        EXPECT_EQ("{}\n", textOf(*bench));
    }
    std::shared_ptr<CTestSpecification> spec = CTestBench::parse(BENCH)->getTestSpecification();
    EXPECT_EQ("add", spec->getDerivedTestSpec(0)->merge()->getFunctionUnderTest().getName());
}

// Sections may come once unless the first was empty; keys behind "tests" go to the root
// specification, which refuses the bench's own sections.
TEST(CTestBench, RefusalsNameTheMessageAndPlace)
{
    expectRefusalsOf(
        {
            {"env: {workspace: a}\nenv: {workspace: b}\n", "Section is already defined!", "[Line: 2  Col: 4]"},
            {"reportConfig: {fileName: a}\nreportConfig: {fileName: b}\n", "Section is already defined!",
             "[Line: 2  Col: 13]"},
            // Behind an empty "env" the bench hands the key on, but the section takes one mapping only.
            {"env: {}\nenv: {workspace: b}\n", "No mappings allowed in the main section!", "[Line: 2  Col: 6]"},
            {"tests: [{id: a}]\nreportConfig: {fileName: r}\n",
             "Invalid section in test specification: reportConfig", "[Line: 2  Col: 13]"},
            {"tests: [{id: a}]\nenv: {workspace: w}\n", "Invalid section in test specification: env",
             "[Line: 2  Col: 4]"},
            {"config: {}\n", "Invalid tag in test bench!", "[Line: 1  Col: 7]"},
            {"externalParams: {}\n", "Invalid tag in test bench!", "[Line: 1  Col: 15]"},
            {"just a scalar\n",
             "Standalone scalar not allowed. It should be member of mapping or sequence: just a scalar",
             "[Line: 2  Col: 0]"},
            {"- a\n", "Sequence start not allowed in the main section of test bench!", "[Line: 1  Col: 1]"},
            {"env: {}\n---\nenv: {}\n", "Invalid section for mapping start!", "[Line: 3  Col: 4]"},
            {"tests: [{id: a}]\n---\nid: b\n",
             "Unexpected YAML content after the end of the root block. Only one YAML document is allowed!",
             "[Line: 3  Col: 3]"},
        },
        benchFailure);
    EXPECT_TRUE(benchFailure("config: {}\n").has("tag: config"));
    EXPECT_TRUE(benchFailure("reportConfig: {fileName: a}\nreportConfig: {}\n").has("section: reportConfig"));
    EXPECT_TRUE(benchFailure("env: {}\n---\nenv: {}\n").has("  data:\n    section: 2\n    key: env\n"));
}

TEST(CTestBench, RootKeysBehindTestsAreWrittenWhereTheBenchRefusesThem)
{
    BenchPtr bench = CTestBench::parse("tests: [{id: a}]\nid: root\n");
    EXPECT_EQ("root", bench->getTestSpecification()->getTestId());
    const std::string written = textOf(*bench);
    EXPECT_EQ("id: root\ntests: [{id: a}]\n", written);
    ParseFailure e = benchFailure(written);
    EXPECT_EQ("Invalid tag in test bench!", e.message);
    EXPECT_TRUE(e.has("tag: id")) << e.context;
    EXPECT_EQ("[Line: 1  Col: 3]", e.position);
    EXPECT_THROW(bench->serialize(nullptr), IllegalArgumentException);
}

// Texts that libyaml cannot write as they were read: a test means the same after a save, and a
// second save writes the text of the first.
TEST(CTestBench, SavedTestsMeanWhatWasRead)
{
    const std::string text = "reportConfig:\n"
                             "  testInfo: {!,}\n"
                             "tests:\n"
                             "- init: {-: 2, ? : 3, '-': 4}\n"
                             "  params: [!,]\n"
                             "  expect: [a\tb == 1, 'c', \"s\"]\n";
    const auto meaningOf = [](CTestBench& bench) {
        const auto test = bench.getTestSpecification()->getDerivedTestSpec(0);
        StrVector params, expected, quoted, values;
        StrStrMap info;
        test->getPositionParams(params);
        test->getExpectedResults(expected, false);
        test->getExpectedResults(quoted, true);
        test->getInitValues(values);
        bench.getTestReportConfig()->getUserInfo(info);
        std::string all;
        for (const StrVector* list : std::initializer_list<const StrVector*>{&params, &expected, &quoted, &values,
                                                                             &test->getInitKeys()}) {
            all += "<";
            for (const auto& item : *list) {
                all += item + "|";
            }
            all += ">";
        }
        for (const auto& entry : info) {
            all += "<" + entry.first + ":" + entry.second + ">";
        }
        return all;
    };
    BenchPtr read = CTestBench::parse(text);
    EXPECT_EQ("<|><a\tb == 1|'c'|\"s\"|><a\tb == 1|'c'|\"s\"|><2|3|4|><-||'-'|><:>", meaningOf(*read));
    const std::string saved = textOf(*read);
    EXPECT_EQ("reportConfig:\n"
              "  testInfo: {! '': ! ''}\n"
              "tests:\n"
              "- init: {! '-': 2, ! '': 3, '-': 4}\n"
              "  params: [! '']\n"
              "  expect: [! \"a\\tb == 1\", 'c', \"s\"]\n",
              saved);
    BenchPtr again = CTestBench::parse(saved);
    EXPECT_EQ(meaningOf(*read), meaningOf(*again));
    EXPECT_EQ(saved, textOf(*again));
}

TEST(CTestBench, ExampleFilesReadBackToTheSameText)
{
    for (const char* name : {"sensor_filter.yaml", "ring_buffer.yaml"}) {
        SCOPED_TRACE(name);
        BenchPtr bench = CTestBench::load(std::string(KESTRIX_SOURCE_DIR) + "/examples/" + name);
        const std::string written = textOf(*bench);
        BenchPtr again = CTestBench::parse(written);
        EXPECT_EQ(written, textOf(*again));
        EXPECT_EQ(bench->getTestSpecification()->getNoOfTests(false), again->getTestSpecification()->getNoOfTests(false));
        EXPECT_FALSE(again->getTestEnvironmentConfig()->isEmpty());
        EXPECT_FALSE(again->getTestReportConfig()->isEmpty());
    }
}
