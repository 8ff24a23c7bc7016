#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "CTestBench.h"
#include "CYAMLDocumentWriter.h"
#include "Exceptions.h"

using namespace kestrix;

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

ParserException parseFailure(const std::string& text)
{
    try {
        CTestBench::parse(text);
    } catch (const ParserException& e) {
        return e;
    } catch (const std::exception& e) {
        ADD_FAILURE() << "wrong exception for: " << text << "\n" << e.what();
        return ParserException(KX_POS, "none");
    }
    ADD_FAILURE() << "no exception for: " << text;
    return ParserException(KX_POS, "none");
}

/// The position text "[Line: n  Col: m]" that the parser put into the error.
std::string positionOf(const IException& e)
{
    const std::string& data = e.getData();
    size_t start = data.rfind("[Line: ");
    return start == std::string::npos ? "" : data.substr(start, data.find(']', start) + 1 - start);
}

/// Checks the message (with its data lines, if any) and the position of a refusal.
void expectRefusal(const std::string& text, const std::string& message, const std::string& position)
{
    SCOPED_TRACE(text);
    ParserException e = parseFailure(text);
    EXPECT_NE(std::string::npos, e.getData().find("Error: " + message)) << e.getData();
    EXPECT_EQ(position, positionOf(e)) << e.getData();
}

} // namespace

TEST(CTestBench, FileIsWrittenBackUnchangedAndReadsBackTheSame)
{
    BenchPtr bench = CTestBench::parse(BENCH);
    const std::string written = textOf(*bench);
    EXPECT_EQ(BENCH, written);
    EXPECT_EQ(written, textOf(*CTestBench::parse(written)));
    EXPECT_EQ("project/demo.ws", bench->getTestEnvironmentConfig()->getWorkspace());
    EXPECT_EQ("report.xml", bench->getTestReportConfig()->getFileName());
    EXPECT_EQ(2, bench->getTestSpecification()->getNoOfDerivedSpecs());
    EXPECT_TRUE(bench->getTestSpecification()->isEmptyExceptDerived());
}

TEST(CTestBench, LoadAndSaveGoThroughFiles)
{
    const std::string in = ::testing::TempDir() + "bench_in.yaml";
    const std::string out = ::testing::TempDir() + "bench_out.yaml";
    std::ofstream(in) << BENCH;
    BenchPtr bench = CTestBench::load(in);
    bench->getTestSpecification()->getDerivedTestSpec(1)->setRunFlag(false);
    bench->save(out);
    std::stringstream written;
    written << std::ifstream(out).rdbuf();
    std::string expected = BENCH;
    expected.replace(expected.find("- id: t2\n") + 9, 0, "  run: false\n");
    EXPECT_EQ(expected, written.str());
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

TEST(CTestBench, EmptyFileGivesAnEmptyBench)
{
    BenchPtr bench = CTestBench::parse("");
    EXPECT_TRUE(bench->getTestEnvironmentConfig()->isEmpty());
    EXPECT_TRUE(bench->getTestReportConfig()->isEmpty());
    EXPECT_TRUE(bench->getTestSpecification()->isEmpty());
    EXPECT_EQ("{}\n", textOf(*bench));

    BenchPtr noTests = CTestBench::parse("tests: []\n");
    EXPECT_TRUE(noTests->getTestSpecification()->isEmpty());
    EXPECT_EQ("{}\n", textOf(*noTests));
}

TEST(CTestBench, MembersOutliveTheBench)
{
    std::shared_ptr<CTestSpecification> spec;
    {
        BenchPtr bench = CTestBench::parse(BENCH);
        spec = bench->getTestSpecification();
    }
    EXPECT_EQ("t1", spec->getDerivedTestSpec(0)->getTestId());
    EXPECT_EQ("add", spec->getDerivedTestSpec(0)->merge()->getFunctionUnderTest().getName());
}

TEST(CTestBench, SectionsMayComeOnceUnlessTheFirstWasEmpty)
{
    expectRefusal("env: {workspace: a}\nenv: {workspace: b}\n", "Section is already defined!", "[Line: 2  Col: 4]");
    ParserException e = parseFailure("reportConfig: {fileName: a}\nreportConfig: {fileName: b}\n");
    EXPECT_NE(std::string::npos, e.getData().find("section: reportConfig")) << e.getData();

    // Behind an empty "env" the bench hands the block on; the section itself takes one mapping only.
    expectRefusal("env: {}\nenv: {workspace: b}\n", "No mappings allowed in the main section!", "[Line: 2  Col: 6]");
}

TEST(CTestBench, KeysBehindTestsGoToTheRootSpecification)
{
    expectRefusal("tests: [{id: a}]\nreportConfig: {fileName: r}\n",
                  "Invalid section in test specification: reportConfig", "[Line: 2  Col: 13]");
    expectRefusal("tests: [{id: a}]\nenv: {workspace: w}\n", "Invalid section in test specification: env",
                  "[Line: 2  Col: 4]");

    BenchPtr bench = CTestBench::parse("tests: [{id: a}]\nid: root\n");
    EXPECT_EQ("root", bench->getTestSpecification()->getTestId());
    // Written flat in front of "tests", where a bench refuses it when read again.
    const std::string written = textOf(*bench);
    EXPECT_EQ("id: root\ntests: [{id: a}]\n", written);
    expectRefusal(written, "Invalid tag in test bench!", "[Line: 1  Col: 3]");
    ParserException e = parseFailure(written);
    EXPECT_NE(std::string::npos, e.getData().find("tag: id")) << e.getData();
}

TEST(CTestBench, RefusalsOfTheRootMapping)
{
    expectRefusal("config: {}\n", "Invalid tag in test bench!", "[Line: 1  Col: 7]");
    EXPECT_NE(std::string::npos, parseFailure("config: {}\n").getData().find("tag: config"));
    expectRefusal("externalParams: {}\n", "Invalid tag in test bench!", "[Line: 1  Col: 15]");
    expectRefusal("just a scalar\n",
                  "Standalone scalar not allowed. It should be member of mapping or sequence: just a scalar",
                  "[Line: 2  Col: 0]");
    expectRefusal("- a\n", "Sequence start not allowed in the main section of test bench!", "[Line: 1  Col: 1]");
    expectRefusal("env: {}\n---\nenv: {}\n", "Invalid section for mapping start!", "[Line: 3  Col: 4]");
    expectRefusal("tests: [{id: a}]\n---\nid: b\n", "Unexpected YAML content after the end of the root block. Only one YAML document is allowed!",
                  "[Line: 3  Col: 3]");
}

TEST(CTestBench, BenchDoesNotValidateItsTests)
{
    BenchPtr bench = CTestBench::parse("tests:\n- func: [f, [1]]\n  params: [2]\n");
    EXPECT_THROW(bench->getTestSpecification()->validate(), ParserException);
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
