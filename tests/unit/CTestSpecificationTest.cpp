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

/// The block with every key, as `serialize` writes it.
const char* const FULL_BLOCK =
    "id: t-add.1\n"
    "run: true\n"
    "desc: adds two numbers\n"
    "tags: [unit, math]\n"
    "options:\n"
    "  /IDE/Debug/Option: 1\n"
    "locals:\n"
    "  counter: int\n"
    "init:\n"
    "  counter: 3\n"
    "  g_total: 0\n"
    "func: [add, [], rv]\n"
    "params: [counter, 5]\n"
    "stubs:\n"
    "- func: [read_sensor, srv]\n"
    "  params: [p1]\n"
    "  assign:\n"
    "    srv: 42\n"
    "  script: [on_stub, [], srv2]\n"
    "initFunc: [prepare]\n"
    "endFunc: [cleanup, [1]]\n"
    "expect:\n"
    "- rv == 8\n"
    "- g_total == 0\n"
    "trace:\n"
    "  runMode: start\n"
    "coverage:\n"
    "  runMode: start\n"
    "  document: cov1\n"
    "profiler:\n"
    "  runMode: start\n"
    "hil:\n"
    "  params:\n"
    "    Out1: 1\n"
    "tests:\n"
    "- id: t-add.2\n"
    "  params: [1, 2]\n"
    "  expect:\n"
    "  - rv == 3\n"
    "- id: t-add.3\n"
    "  func: [add, [7, 8], rv]\n"
    "  expect:\n"
    "  - rv == 15\n";

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
    ASSERT_EQ(2, spec->getNoOfDerivedSpecs());
    EXPECT_EQ(spec, spec->getDerivedTestSpec(0)->getParentTestSpecification());
    EXPECT_EQ(nullptr, spec->getParentTestSpecification());
    spec->save(out);
    EXPECT_EQ(FULL_BLOCK, fileText(out));
    EXPECT_EQ(FULL_BLOCK, CTestSpecification::load(out)->toString());

    spec->getDerivedTestSpec(0)->save(out, true);
    EXPECT_EQ(std::string(FULL_BLOCK) + "id: t-add.2\nparams: [1, 2]\nexpect:\n- rv == 3\n", fileText(out));
    // Loading validates; a file that cannot be written is silently skipped.
    std::ofstream(in) << "id: x\nfunc: [f, [1]]\nparams: [2]\n";
    EXPECT_THROW(CTestSpecification::load(in), ParserException);
    EXPECT_NO_THROW(spec->save("/nonexistent-dir/spec.yaml"));
    std::remove(in.c_str());
    std::remove(out.c_str());
}

TEST(CTestSpecification, QuotingStylesAnchorsAndBlockFormsSurvive)
{
    const std::string text =
        "id: &ID 'q-1'\n"
        "desc: \"with: colon\"\n"
        "tags:\n"
        "- one\n"
        "- 'two'\n"
        "init: {s: \"abc\", c: 'x'}\n"
        "func:\n"
        "- f\n"
        "- - \"abc\"\n"
        "  - 'a'\n"
        "- rv\n"
        "expect: [rv == 'a', s == \"abc\"]\n";
    const std::string once = CTestSpecification::parseTestSpec(text)->toString();
    EXPECT_EQ(text, once);
    EXPECT_EQ(once, CTestSpecification::parseTestSpec(once)->toString());
}

TEST(CTestSpecification, KeysAreWrittenInFixedOrderWhateverTheFileOrder)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("expect: [a]\nfunc: [f]\ndesc: d\nid: x\n");
    EXPECT_EQ("id: x\ndesc: d\nfunc: [f]\nexpect: [a]\n", spec->toString());
    EXPECT_EQ("{}\n", CTestSpecification().toString());
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

TEST(CTestSpecification, RepeatedBlocksReplaceOrAppendAsEachKeyWants)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("locals: {a: int}\n"
                                                     "locals: {b: char}\n"
                                                     "params: [1]\n"
                                                     "params: [2, 3]\n"
                                                     "stubs: [{func: [s1]}]\n"
                                                     "stubs:\n- func: [s2]\n"
                                                     "tests: [{id: a}]\n"
                                                     "tests: [{id: b}]\n"
                                                     "id: ''\n"
                                                     "id: x\n");
    StrStrMap locals;
    spec->getLocalVariables(locals);
    EXPECT_EQ((StrStrMap{{"b", "char"}}), locals);
    EXPECT_EQ((StrVector{"2", "3"}), paramsOf(*spec));
    ASSERT_EQ(2u, spec->getStubs().size());
    EXPECT_EQ("s2", spec->getStubs()[1]->getFunctionName());
    ASSERT_EQ(2, spec->getNoOfDerivedSpecs());
    EXPECT_EQ("b", spec->getDerivedTestSpec(1)->getTestId());
    EXPECT_EQ("x", spec->getTestId());
    // The second blocks' attributes are written: the stubs list is now in block style.
    EXPECT_NE(std::string::npos, spec->toString().find("stubs:\n- {func: [s1]}\n- func: [s2]\n"));
}

TEST(CTestSpecification, ParametersInFuncAndParamsOfOneBlockAreRefusedByLoadOnly)
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
}

TEST(CTestSpecification, GettersGiveTextInTheRightForm)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("tags: [a, 'b']\n"
                                                     "options: {/IDE/x: 1, /IDE/a: \"s\"}\n"
                                                     "init: {z: 1, a: 'c'}\n"
                                                     "func: [f, [\"abc\", 'c', 'long']]\n"
                                                     "expect: ['ab', \"q\", 'c', x == 'd']\n"
                                                     "tests:\n- params: [\"abc\", 'c']\n");
    StrVector tags, optionValues, initValues, expected, quoted;
    spec->getTags(tags);
    spec->getOptionValues(optionValues);
    spec->getInitValues(initValues);
    spec->getExpectedResults(expected, false);
    spec->getExpectedResults(quoted, true);
    EXPECT_EQ((StrVector{"a", "b"}), tags);
    EXPECT_EQ((StrVector{"/IDE/x", "/IDE/a"}), spec->getOptionKeys());
    EXPECT_EQ((StrVector{"1", "\"s\""}), optionValues);
    EXPECT_EQ((StrVector{"z", "a"}), spec->getInitKeys());
    EXPECT_EQ((StrVector{"1", "'c'"}), initValues);
    EXPECT_EQ((StrVector{"ab", "\"q\"", "'c'", "x == 'd'"}), expected);
    EXPECT_EQ((StrVector{"'ab'", "\"q\"", "'c'", "x == 'd'"}), quoted);
    // Position parameters keep their quotes only when given in "func".
    EXPECT_EQ((StrVector{"\"abc\"", "'c'", "long"}), paramsOf(*spec));
    EXPECT_EQ((StrVector{"abc", "c"}), paramsOf(*spec->getDerivedTestSpec(0)));
}

TEST(CTestSpecification, EmptinessCountsEveryFieldAndTheRunFlag)
{
    CTestSpecification spec;
    spec.setTestId("a");
    EXPECT_FALSE(spec.isEmptyExceptDerived());
    spec.setTestId("");
    EXPECT_TRUE(spec.isEmpty());

    SpecPtr disabled = CTestSpecification::parseTestSpec("run: false\n");
    EXPECT_FALSE(disabled->isEmpty());
    disabled->clearRunFlag();
    EXPECT_TRUE(disabled->isEmpty());
    EXPECT_TRUE(disabled->getRunFlag());

    SpecPtr onlyDerived = CTestSpecification::parseTestSpec("tests:\n- id: d\n");
    EXPECT_TRUE(onlyDerived->isEmptyExceptDerived());
    EXPECT_FALSE(onlyDerived->isEmpty());
    EXPECT_FALSE(CTestSpecification::parseTestSpec("hil:\n  params: {a: 1}\n")->isEmpty());
    EXPECT_FALSE(CTestSpecification::parseTestSpec("trace: {runMode: start}\n")->isEmpty());
}

TEST(CTestSpecification, DerivedListIsEditedByIndexAndPointer)
{
    auto root = std::make_shared<CTestSpecification>();
    EXPECT_EQ(nullptr, root->mappingEnd());
    SpecPtr a = root->addDerivedTestSpec("a", "fa");
    SpecPtr b = root->addDerivedTestSpec("", "");
    EXPECT_EQ(root.get(), a->mappingEnd());
    EXPECT_EQ("fa", a->getFunctionUnderTest().getName());
    EXPECT_TRUE(b->isEmpty());
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
}

TEST(CTestSpecification, TestCountRespectsRunFlagOfEachLevelOnly)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("tests:\n"
                                                     "- id: a\n"
                                                     "  run: false\n"
                                                     "  tests:\n"
                                                     "  - id: a1\n"
                                                     "  - id: a2\n"
                                                     "    run: no\n"
                                                     "- id: b\n"
                                                     "  run: true\n");
    EXPECT_EQ(5, spec->getNoOfTests(false));
    EXPECT_EQ(3, spec->getNoOfTests(true));
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

TEST(CTestSpecification, PositionParamsCannotBeSetWhenFuncHasThem)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("func: [f, [1]]\n");
    try {
        spec->setPositionParams("[2]");
        FAIL() << "no exception";
    } catch (const IOException& e) {
        EXPECT_EQ("Parameters must not be assigned in both the 'func' section and 'params' section.", e.getDesc());
        EXPECT_NE(std::string::npos, e.getData().find("params: [2]")) << e.getData();
    }
    EXPECT_EQ((StrVector{"1"}), paramsOf(*spec));

    SpecPtr plain = CTestSpecification::parseTestSpec("func: [f]\n");
    plain->setPositionParams("[a, 'b']");
    EXPECT_EQ((StrVector{"a", "b"}), paramsOf(*plain));
}

TEST(CTestSpecification, StubsAreMadeDetachedAndRemovedByIndex)
{
    SpecPtr spec = CTestSpecification::parseTestSpec("stubs:\n- func: [a]\n- func: [b]\n");
    auto stub = spec->newTestStub();
    stub->setFunctionName("c");
    EXPECT_EQ(2u, spec->getStubs().size());
    spec->getStubs().push_back(stub);
    spec->removeStub(0);
    EXPECT_THROW(spec->removeStub(2), IndexOutOfBoundsException);
    ASSERT_EQ(2u, spec->getStubs().size());
    EXPECT_EQ("b", spec->getStubs()[0]->getFunctionName());
    EXPECT_EQ("c", spec->getStubs()[1]->getFunctionName());

    // What a managed caller may hand over as null is refused before it is used.
    spec->getStubs().push_back(nullptr);
    EXPECT_THROW(spec->toString(), IllegalArgumentException);
    EXPECT_THROW(spec->addDerivedTestSpec("d", "")->merge(), IllegalArgumentException);
    EXPECT_THROW(spec->serialize(nullptr), IllegalArgumentException);
}
