#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "CTestBench.h"
#include "CTestSpecification.h"
#include "Exceptions.h"
#include "SectionTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

typedef std::shared_ptr<CTestSpecification> SpecPtr;

/// A block with every key, in block and flow forms and every quoting style, as `serialize` writes it.
const char* const FULL_BLOCK =
    "id: &ID 't-add.1'\n"
    "run: true\n"
    "desc: \"adds: two numbers\"\n"
    "tags:\n"
    "- unit\n"
    "- 'math'\n"
    "options: {/IDE/Debug/Option: 1}\n"
    "locals: {counter: int}\n"
    "init:\n"
    "  counter: 3\n"
    "  c: 'x'\n"
    "func:\n"
    "- add\n"
    "- - \"abc\"\n"
    "  - 'a'\n"
    "  - 'long'\n"
    "- rv\n"
    "stubs:\n"
    "- func: [read_sensor, srv]\n"
    "  assign: {srv: 42}\n"
    "initFunc: [prepare]\n"
    "endFunc: [cleanup, [1]]\n"
    "expect: ['ab', \"q\", 'c', rv == 'a']\n"
    "trace: {runMode: start}\n"
    "coverage: {runMode: start, document: cov1}\n"
    "profiler: {runMode: start}\n"
    "hil:\n"
    "  params:\n"
    "    Out1: 1\n"
    "tests:\n"
    "- id: t-add.2\n"
    "  params: [\"abc\", 'c']\n"
    "  expect:\n"
    "  - rv == 3\n";

/// What reading `text` as a lone specification reports.
ParseFailure specFailure(const std::string& text)
{
    return failureOf([&] { CTestSpecification::parseTestSpec(text); });
}

StrVector paramsOf(const CTestSpecification& spec)
{
    StrVector params;
    spec.getPositionParams(params);
    return params;
}

std::string fileText(const std::string& path)
{
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

} // namespace

TEST(CTestSpecification, FileIsLoadedSavedAndLoadedBackToTheSameText)
{
    const std::string in = ::testing::TempDir() + "spec_in.yaml";
    const std::string out = ::testing::TempDir() + "spec_out.yaml";
    std::ofstream(in) << "# leading comment\n" << FULL_BLOCK;
    SpecPtr spec = CTestSpecification::load(in);
    ASSERT_EQ(1, spec->getNoOfDerivedSpecs());
    EXPECT_EQ(spec, spec->getDerivedTestSpec(0)->getParentTestSpecification());
    spec->save(out);
    EXPECT_EQ(FULL_BLOCK, fileText(out));
    EXPECT_EQ(FULL_BLOCK, CTestSpecification::load(out)->toString());

    spec->getDerivedTestSpec(0)->save(out, true);
    EXPECT_EQ(std::string(FULL_BLOCK) + "id: t-add.2\nparams: [\"abc\", 'c']\nexpect:\n- rv == 3\n", fileText(out));
    // Loading validates; a file that cannot be written is silently skipped.
    std::ofstream(in) << "id: x\nfunc: [f, [1]]\nparams: [2]\n";
    EXPECT_THROW(CTestSpecification::load(in), ParserException);
    EXPECT_NO_THROW(spec->save("/nonexistent-dir/spec.yaml"));
    std::remove(in.c_str());
    std::remove(out.c_str());
}

TEST(CTestSpecification, RefusalsNameTheMessageAndPlace)
{
    const std::string badChars = "Only subset of all characters is allowed: letters, numbers, and symbols: _-./:";
    expectRefusalsOf(
        {
            {"id: a b\n", badChars, "[Line: 2  Col: 0]"},
            {"id: x\nid: y\n", "ID already set to: 'x'", "[Line: 3  Col: 0]"},
            {"run: no\nrun: yes\n", "'run' mode already set to: 'no'", "[Line: 3  Col: 0]"},
            {"desc: a\ndesc: b\n", "Description already set to: 'a'", "[Line: 3  Col: 0]"},
            {"run: maybe\n",
             "Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: maybe",
             "[Line: 2  Col: 0]"},
            {"tags: [a]\ntags: [b]\n", "Tags are already defined!", "[Line: 2  Col: 5]"},
            {"tags: [a, \"b c\"]\n", badChars, "[Line: 1  Col: 16]"},
            {"id: t\nunknown: 1\n", "Invalid section in test specification: unknown", "[Line: 2  Col: 8]"},
            {"config: {}\n", "Invalid section in test specification: config", "[Line: 1  Col: 7]"},
            {"externalParams: {}\n", "Invalid section in test specification: externalParams", "[Line: 1  Col: 15]"},
            {"tests:\n- id: a\n  bad: 1\n", "Invalid section in test specification: bad", "[Line: 3  Col: 6]"},
            {"tests: abc\n", "Scalar values not allowed for section 'E_SECTION_DERIVED_TESTS'  Key: 'tests', value: abc",
             "[Line: 2  Col: 0]"},
            {"tests: [abc]\n", "Invalid section for sequence start (value = 'abc'): E_SECTION_DERIVED_TEST_SPEC",
             "[Line: 1  Col: 12]"},
            {"stubs:\n- func: [f]\n- x\n", "Invalid section for sequence start (value = 'x'): E_SECTION_STUB_ITEM",
             "[Line: 4  Col: 0]"},
            {"tests: {id: a}\n", "Invalid section for mapping start: E_SECTION_DERIVED_TESTS.  Key: 'tests'",
             "[Line: 1  Col: 8]"},
            {"id: [a]\n", "Invalid section for sequence. Section: E_SECTION_ID", "[Line: 1  Col: 5]"},
            {"- a\n", "Invalid section for sequence. Section: E_SECTION_MAIN", "[Line: 1  Col: 1]"},
            {"func: f\n", "Function call specification should be described as a list: '[funcName, ...]'! Given as "
                          "scalar: 'f'", "[Line: 2  Col: 0]"},
            {"func: [f]\nfunc: [g]\n", "Invalid specification for function call! Unexpected sequence start!",
             "[Line: 2  Col: 7]"},
        },
        specFailure);

    ParseFailure init = specFailure("init: {a: 1}\ninit: {b: 2}\n");
    EXPECT_EQ("Illegal state", init.desc);
    EXPECT_EQ("Init section is already defined for this test specification!", init.message);
    EXPECT_EQ("[Line: 2  Col: 5]", init.position);
    ParseFailure id = specFailure("desc: x\nid: a b\n");
    EXPECT_TRUE(id.has("description: Test ID may not contain spaces and some symbols.\n"
                       "    invalidString: a b\n    forbiddenChar: ' '")) << id.context;
    EXPECT_EQ("[Line: 3  Col: 0]", id.position);
}

TEST(CTestSpecification, RepeatedBlocksReplaceOrAppendAndKeysAreWrittenInFixedOrder)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("locals: {a: int}\nlocals: {b: char}\n"
                                                     "params: [1]\nparams: [2, 3]\n"
                                                     "stubs: [{func: [s1]}]\nstubs:\n- func: [s2]\n"
                                                     "tests: [{id: a}]\ntests: [{id: b}]\n"
                                                     "id: ''\nid: x\n");
    EXPECT_EQ((StrVector{"2", "3"}), paramsOf(*spec));
    EXPECT_EQ("b", spec->getDerivedTestSpec(1)->getTestId());
    // Keys are written in a fixed order, whatever the file's; the second blocks' attributes are
    // written: the stubs list is now in block style.
    EXPECT_EQ("id: x\nlocals: {b: char}\nparams: [2, 3]\nstubs:\n- {func: [s1]}\n- func: [s2]\n"
              "tests: [{id: a}, {id: b}]\n",
              spec->toString());
}

TEST(CTestSpecification, ParametersInFuncAndParamsOfOneBlockAreRefused)
{
    const std::string text = "tests:\n- func: [f, [1]]\n  params: [2]\n";
    EXPECT_EQ("Function parameters must not be specified in 'func' and 'params' sections. Remove one of sections!",
              specFailure(text).desc);
    // Different levels are legal: merge settles them.
    EXPECT_NO_THROW(CTestSpecification::parseTestSpec("func: [f, [1]]\ntests:\n- params: [2]\n"));
    // A bench does not validate.
    auto bench = CTestBench::parse(text);
    EXPECT_TRUE(bench->getTestSpecification()->getDerivedTestSpec(0)->hasPositionParams());
    EXPECT_THROW(bench->getTestSpecification()->validate(), ParserException);

    // The setter refuses them and keeps what was there.
    SpecPtr spec = CTestSpecification::parseTestSpec("func: [f, [1]]\n");
    try {
        spec->setPositionParams("[2]");
        FAIL() << "no exception";
    } catch (const IOException& e) {
        EXPECT_EQ("Parameters must not be assigned in both the 'func' section and 'params' section.", e.getDesc());
        EXPECT_NE(std::string::npos, e.getData().find("params: [2]")) << e.getData();
    }
    EXPECT_EQ((StrVector{"1"}), paramsOf(*spec));
}

TEST(CTestSpecification, GettersGiveTextInTheRightForm)
{
    SpecPtr spec = CTestSpecification::parseTestSpec(FULL_BLOCK);
    StrVector tags, initValues, expected, quoted;
    spec->getTags(tags);
    spec->getInitValues(initValues);
    spec->getExpectedResults(expected, false);
    spec->getExpectedResults(quoted, true);
    EXPECT_EQ((StrVector{"unit", "math"}), tags);
    EXPECT_EQ((StrVector{"counter", "c"}), spec->getInitKeys());
    EXPECT_EQ((StrVector{"3", "'x'"}), initValues);
    EXPECT_EQ((StrVector{"ab", "\"q\"", "'c'", "rv == 'a'"}), expected);
    EXPECT_EQ((StrVector{"'ab'", "\"q\"", "'c'", "rv == 'a'"}), quoted);
    // Position parameters keep their quotes only when given in "func".
    EXPECT_EQ((StrVector{"\"abc\"", "'a'", "long"}), paramsOf(*spec));
    EXPECT_EQ((StrVector{"abc", "c"}), paramsOf(*spec->getDerivedTestSpec(0)));
}

TEST(CTestSpecification, RunFlagCountsForEmptinessAndTestCountOfItsLevelOnly)
{
    SpecPtr disabled = CTestSpecification::parseTestSpec("run: false\n");
    EXPECT_FALSE(disabled->isEmpty());
    disabled->clearRunFlag();
    EXPECT_TRUE(disabled->isEmpty());
    EXPECT_TRUE(disabled->getRunFlag());
    EXPECT_EQ("{}\n", disabled->toString());

    SpecPtr onlyDerived = CTestSpecification::parseTestSpec("tests:\n- id: d\n");
    EXPECT_TRUE(onlyDerived->isEmptyExceptDerived());
    EXPECT_FALSE(onlyDerived->isEmpty());
    for (const char* text : {"hil:\n  params: {a: 1}\n", "trace: {runMode: start}\n"}) {
        EXPECT_FALSE(CTestSpecification::parseTestSpec(text)->isEmpty()) << text;
    }

    SpecPtr tree = CTestSpecification::parseTestSpec("tests:\n"
                                                     "- {id: a, run: false, tests: [{id: a1}, {id: a2, run: no}]}\n"
                                                     "- {id: b, run: true}\n");
    EXPECT_EQ(5, tree->getNoOfTests(false));
    EXPECT_EQ(3, tree->getNoOfTests(true));
}

TEST(CTestSpecification, DerivedTestsAndStubsAreEditedByIndexAndPointer)
{
    auto root = std::make_shared<CTestSpecification>();
    SpecPtr a = root->addDerivedTestSpec("a", "fa");
    SpecPtr b = root->addDerivedTestSpec("", "");
    EXPECT_EQ("fa", a->getFunctionUnderTest().getName());
    auto c = std::make_shared<CTestSpecification>(root);
    root->addDerivedTestSpec(1, c);
    auto d = std::make_shared<CTestSpecification>(root);
    root->addDerivedTestSpec(-1, d);
    ASSERT_EQ(4, root->getNoOfDerivedSpecs());
    EXPECT_EQ(c, root->getDerivedTestSpec(1));
    EXPECT_EQ(d, root->getDerivedTestSpec(3));
    try {
        root->getDerivedTestSpec(-1);
        FAIL() << "no exception";
    } catch (const IndexOutOfBoundsException& e) {
        EXPECT_EQ("No derived test specificatin at the given index exists!", e.getDesc());
        EXPECT_NE(std::string::npos, e.getData().find("idx: -1")) << e.getData();
        EXPECT_NE(std::string::npos, e.getData().find("noOfDerivedTestSpecs: 4")) << e.getData();
    }
    EXPECT_THROW(root->getDerivedTestSpec(4), IndexOutOfBoundsException);

    SpecPtr grandChild = a->addDerivedTestSpec("g", "");
    EXPECT_EQ(-1, root->deleteDerivedTestSpec(grandChild));
    EXPECT_EQ(1, root->deleteDerivedTestSpec(c));
    EXPECT_EQ(b, root->getDerivedTestSpec(1));
    EXPECT_EQ(3, root->getNoOfDerivedSpecs());
    // A null item or an ancestor (a cycle) is refused and nothing changes.
    for (const SpecPtr& bad : {SpecPtr(), grandChild, a, root}) {
        EXPECT_THROW(grandChild->addDerivedTestSpec(0, bad), IllegalArgumentException);
    }
    EXPECT_FALSE(grandChild->hasDerivedSpecs());

    SpecPtr spec = CTestSpecification::parseTestSpec("stubs:\n- func: [a]\n- func: [b]\n");
    spec->removeStub(0);
    EXPECT_THROW(spec->removeStub(1), IndexOutOfBoundsException);
    ASSERT_EQ(1u, spec->getStubs().size());
    EXPECT_EQ("b", spec->getStubs()[0]->getFunctionName());
    // What a managed caller may hand over as null is refused before it is used.
    spec->getStubs().push_back(nullptr);
    EXPECT_THROW(spec->toString(), IllegalArgumentException);
    EXPECT_THROW(spec->addDerivedTestSpec("d", "")->merge(), IllegalArgumentException);
    EXPECT_THROW(spec->serialize(nullptr), IllegalArgumentException);
}

TEST(CTestSpecification, TextSettersParseYamlAndKeepTheFieldsForm)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("tags:\n- old\nlocals: &L {a: int}\n");
    spec->setTags("[x, 'y']");
    spec->setLocalVariables("{b: char, c: \"s\"}");
    spec->setTestId("\"quoted\"");
    spec->setDescription("'a: b'");
    spec->setExpectedResults("[r == 1]");
    spec->setInitValues("b: 2");
    spec->setIdeOptions("{/o: 1}");
    spec->setRunFlag(false);
    const std::string written = "id: \"quoted\"\n"
                                "run: false\n"
                                "desc: 'a: b'\n"
                                "tags:\n- x\n- 'y'\n"
                                "options:\n  /o: 1\n"
                                "locals: &L {b: char, c: \"s\"}\n"
                                "init:\n  b: 2\n"
                                "expect:\n- r == 1\n";
    EXPECT_EQ(written, spec->toString());

    // A failed setter leaves the field as it was.
    EXPECT_THROW(spec->setTags("[a, [b]]"), ParserException);
    EXPECT_THROW(spec->setLocalVariables("{a: 1, a: 2}"), ParserException);
    EXPECT_THROW(spec->setTestId("a, b"), ParserException);
    EXPECT_EQ(written, spec->toString());
}
