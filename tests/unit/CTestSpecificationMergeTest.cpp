#include <gtest/gtest.h>

#include <string>

#include "CTestSpecification.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

typedef std::shared_ptr<CTestSpecification> SpecPtr;

// Four levels: root > mid > leaf > leaf2, and siblings of mid.
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

} // namespace

// Each field comes from the nearest level that has it; maps and lists are taken whole, never
// joined; the run flag is not inherited. Parameters: "params" of a nearer level outrank an
// ancestor's parameters in "func" (cleared), a nearer "func" with parameters outranks an
// ancestor's "params", and a nearer "func" without parameters takes none from above.
TEST(CTestSpecificationMerge, EachLevelTakesTheNearestFields)
{
    Tree t;
    const std::string shared = "options: {/IDE/o: 1}\nlocals: {a: int}\n";
    const std::string rootFuncs = "initFunc: [prep, [0]]\nendFunc: [done]\n";
    const struct {
        SpecPtr spec;
        std::string merged;
    } rows[] = {
        {t.root, "id: root\ndesc: root desc\ntags: [r]\n" + shared + "init: {a: 1, b: 2}\nfunc: [f, [1, 2], rv]\n"
                 "stubs:\n- func: [s1, r1]\n- func: [s2]\n" + rootFuncs +
                 "expect: [rv == 3]\ntrace: {runMode: start}\nhil: {params: {Out: 1}}\n"},
        {t.mid, "id: mid\ndesc: root desc\ntags: [r]\n" + shared + "init: {c: 3}\nfunc: [f, [], rv]\n"
                "params: [5, 6]\nstubs: [{func: [m1]}]\n" + rootFuncs + "expect: [rv == 3]\n"
                "trace: {runMode: start}\nprofiler: {runMode: start}\nhil: {params: {Out: 1}}\n"},
        {t.leaf, "id: leaf\ndesc: leaf desc\ntags: [r]\n" + shared + "init: {c: 3}\nfunc: [f, [], rv]\n"
                 "params: [5, 6]\nstubs: [{func: [m1]}]\n" + rootFuncs + "expect: [rv == 11]\n"
                 "trace: {runMode: start}\nprofiler: {runMode: start}\nhil: {params: {Out: 1}}\n"},
        {t.leaf2, "id: leaf2\ndesc: leaf desc\ntags: [r]\n" + shared + "init: {c: 3}\nfunc: [g, [9], r]\n"
                  "stubs: [{func: [m1]}]\n" + rootFuncs + "expect: [rv == 11]\n"
                  "trace: {runMode: start}\nprofiler: {runMode: start}\nhil: {params: {Out: 1}}\n"},
        {t.sibling, "id: sibling\ndesc: root desc\ntags: [r]\n" + shared + "init: {a: 1, b: 2}\nfunc: [h]\n"
                    "stubs:\n- func: [s1, r1]\n- func: [s2]\n" + rootFuncs +
                    "expect: [rv == 3]\ntrace: {runMode: start}\nhil: {params: {Out: 1}}\n"},
        // An item without id takes its ancestor's.
        {t.bare, "id: root\ndesc: only a description\ntags: [r]\n" + shared + "init: {a: 1, b: 2}\n"
                 "func: [f, [1, 2], rv]\nstubs:\n- func: [s1, r1]\n- func: [s2]\n" + rootFuncs +
                 "expect: [rv == 3]\ntrace: {runMode: start}\nhil: {params: {Out: 1}}\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.spec->getTestId());
        SpecPtr merged = row.spec->merge();
        EXPECT_EQ(row.merged, merged->toString());
        EXPECT_EQ(row.spec, merged->getParentTestSpecification());
        EXPECT_FALSE(merged->hasDerivedSpecs());
        EXPECT_NO_THROW(merged->validate());
    }
    StrVector params;
    t.mid->merge()->getPositionParams(params);
    EXPECT_EQ((StrVector{"5", "6"}), params);
    params.clear();
    t.leaf2->merge()->getPositionParams(params);
    EXPECT_EQ((StrVector{"9"}), params);
}

TEST(CTestSpecificationMerge, DerivedWithOnlyAnIdRunsWithEverythingOfItsParent)
{
    Tree t;
    SpecPtr onlyId = t.root->addDerivedTestSpec("copy", "");
    std::string parentText = t.root->merge()->toString();
    parentText.replace(0, std::string("id: root").size(), "id: copy");
    EXPECT_EQ(parentText, onlyId->merge()->toString());
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
    EXPECT_EQ("id: leaf\ndesc: leaf desc\nexpect: [rv == 11]\n", leaf->merge()->toString());
}
