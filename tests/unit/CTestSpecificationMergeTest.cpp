#include <gtest/gtest.h>

#include <string>

#include "CTestSpecification.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

typedef std::shared_ptr<CTestSpecification> SpecPtr;

// Four levels: root > mid > leaf > leaf2, and a sibling of mid.
const char* const TREE =
    "id: root\n"
    "desc: root desc\n"
    "tags: [r]\n"
    "options: {/IDE/o: 1}\n"
    "locals: {a: int}\n"
    "init: {a: 1, b: 2}\n"
    "func: [f, [1, 2], rv]\n"
    "stubs:\n"
    "- func: [s1, r1]\n"
    "- func: [s2]\n"
    "initFunc: [prep, [0]]\n"
    "endFunc: [done]\n"
    "expect: [rv == 3]\n"
    "trace: {runMode: start}\n"
    "hil: {params: {Out: 1}}\n"
    "tests:\n"
    "- id: mid\n"
    "  run: false\n"
    "  init: {c: 3}\n"
    "  params: [5, 6]\n"
    "  stubs: [{func: [m1]}]\n"
    "  profiler: {runMode: start}\n"
    "  tests:\n"
    "  - id: leaf\n"
    "    desc: leaf desc\n"
    "    expect: [rv == 11]\n"
    "    tests:\n"
    "    - id: leaf2\n"
    "      func: [g, [9], r]\n"
    "- id: sibling\n"
    "  func: [h]\n"
    "- desc: only a description\n";

struct Tree {
    SpecPtr root = CTestSpecification::parseTestSpec(TREE);
    SpecPtr mid = root->getDerivedTestSpec(0);
    SpecPtr leaf = mid->getDerivedTestSpec(0);
    SpecPtr leaf2 = leaf->getDerivedTestSpec(0);
    SpecPtr sibling = root->getDerivedTestSpec(1);
    SpecPtr bare = root->getDerivedTestSpec(2);
};

StrVector paramsOf(const CTestSpecification& spec)
{
    StrVector params;
    spec.getPositionParams(params);
    return params;
}

StrVector initOf(const CTestSpecification& spec)
{
    StrVector values;
    spec.getInitValues(values);
    return values;
}

StrVector stubNames(CTestSpecification& spec)
{
    StrVector names;
    for (const auto& stub : spec.getStubs()) {
        names.push_back(stub->getFunctionName());
    }
    return names;
}

StrVector expectOf(const CTestSpecification& spec)
{
    StrVector expected;
    spec.getExpectedResults(expected, false);
    return expected;
}

} // namespace

TEST(CTestSpecificationMerge, RootGivesACopyWithoutDerivedWhoseParentIsTheRoot)
{
    Tree t;
    SpecPtr merged = t.root->merge();
    EXPECT_EQ(t.root, merged->getParentTestSpecification());
    EXPECT_FALSE(merged->hasDerivedSpecs());
    const std::string rootText = t.root->toString();
    const std::string ownKeys = rootText.substr(0, rootText.find("tests:\n"));
    EXPECT_EQ(ownKeys, merged->toString());
}

TEST(CTestSpecificationMerge, SecondLevelTakesItsOwnFieldsAndTheRestFromTheRoot)
{
    Tree t;
    SpecPtr merged = t.mid->merge();
    EXPECT_EQ("mid", merged->getTestId());
    EXPECT_EQ("root desc", merged->getDescription());
    EXPECT_TRUE(merged->getRunFlag()) << "the run flag is not inherited";
    // A map of a nearer level hides the ancestors' map entirely.
    EXPECT_EQ((StrVector{"c"}), merged->getInitKeys());
    EXPECT_EQ((StrVector{"3"}), initOf(*merged));
    EXPECT_EQ((StrVector{"/IDE/o"}), merged->getOptionKeys());
    // Derived params outrank the parent's parameters in func, which are cleared.
    EXPECT_EQ("f", merged->getFunctionUnderTest().getName());
    EXPECT_EQ("rv", merged->getFunctionUnderTest().getRetValueName());
    EXPECT_FALSE(merged->getFunctionUnderTest().hasPositionParams());
    EXPECT_EQ((StrVector{"5", "6"}), paramsOf(*merged));
    EXPECT_EQ((StrVector{"m1"}), stubNames(*merged));
    EXPECT_EQ("prep", merged->getInitFunction().getName());
    EXPECT_TRUE(merged->getInitFunction().hasPositionParams());
    EXPECT_EQ("done", merged->getEndFunction().getName());
    EXPECT_FALSE(merged->getTrace().isEmpty());
    EXPECT_FALSE(merged->getProfiler().isEmpty());
    EXPECT_FALSE(merged->getHIL().isEmpty());
    EXPECT_NO_THROW(merged->validate());
}

TEST(CTestSpecificationMerge, ThirdLevelCombinesAllThreeLevels)
{
    Tree t;
    SpecPtr merged = t.leaf->merge();
    EXPECT_EQ("id: leaf\n"
              "desc: leaf desc\n"
              "tags: [r]\n"
              "options: {/IDE/o: 1}\n"
              "locals: {a: int}\n"
              "init: {c: 3}\n"
              "func: [f, [], rv]\n"
              "params: [5, 6]\n"
              "stubs: [{func: [m1]}]\n"
              "initFunc: [prep, [0]]\n"
              "endFunc: [done]\n"
              "expect: [rv == 11]\n"
              "trace: {runMode: start}\n"
              "profiler: {runMode: start}\n"
              "hil: {params: {Out: 1}}\n",
              merged->toString());
}

TEST(CTestSpecificationMerge, NearerFuncWithParametersOutranksAncestorsParams)
{
    Tree t;
    SpecPtr merged = t.leaf2->merge();
    EXPECT_EQ("g", merged->getFunctionUnderTest().getName());
    EXPECT_EQ("r", merged->getFunctionUnderTest().getRetValueName());
    EXPECT_EQ((StrVector{"9"}), paramsOf(*merged));
    EXPECT_NE(std::string::npos, merged->toString().find("func: [g, [9], r]\n"));
    EXPECT_EQ(std::string::npos, merged->toString().find("\nparams:")) << "mid's params do not reach it";
    EXPECT_EQ("leaf desc", merged->getDescription());
    EXPECT_EQ((StrVector{"rv == 11"}), expectOf(*merged));
}

TEST(CTestSpecificationMerge, FuncWithoutParametersTakesNoneFromAncestorsFunc)
{
    Tree t;
    SpecPtr merged = t.sibling->merge();
    EXPECT_EQ("h", merged->getFunctionUnderTest().getName());
    EXPECT_FALSE(merged->hasPositionParams());
    EXPECT_EQ((StrVector{"s1", "s2"}), stubNames(*merged));
    EXPECT_EQ((StrVector{"a", "b"}), merged->getInitKeys());
    EXPECT_EQ((StrVector{"rv == 3"}), expectOf(*merged));
    EXPECT_TRUE(merged->getProfiler().isEmpty()) << "a sibling's section does not leak";
}

TEST(CTestSpecificationMerge, DerivedWithOnlyAnIdRunsWithEverythingOfItsParent)
{
    Tree t;
    SpecPtr onlyId = t.root->addDerivedTestSpec("copy", "");
    std::string parentText = t.root->merge()->toString();
    parentText.replace(0, std::string("id: root").size(), "id: copy");
    EXPECT_EQ(parentText, onlyId->merge()->toString());

    SpecPtr merged = t.bare->merge();
    EXPECT_EQ("root", merged->getTestId()) << "an item without id takes its ancestor's";
    EXPECT_EQ("only a description", merged->getDescription());
}

TEST(CTestSpecificationMerge, MergedStubsAreCopiesNotShared)
{
    Tree t;
    SpecPtr merged = t.sibling->merge();
    merged->getStubs()[0]->setFunctionName("changed");
    merged->getFunctionUnderTest().setName("other");
    EXPECT_EQ("s1", t.root->getStubs()[0]->getFunctionName());
    EXPECT_EQ("r1", merged->getStubs()[0]->getRetValName());
    EXPECT_EQ("h", t.sibling->getFunctionUnderTest().getName());
}

TEST(CTestSpecificationMerge, WalkStopsWhereAParentIsGone)
{
    SpecPtr leaf;
    {
        Tree t;
        leaf = t.leaf;
    }
    EXPECT_EQ(nullptr, leaf->getParentTestSpecification());
    SpecPtr merged = leaf->merge();
    EXPECT_EQ("id: leaf\ndesc: leaf desc\nexpect: [rv == 11]\n", merged->toString());
}
