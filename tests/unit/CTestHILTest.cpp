#include <gtest/gtest.h>

#include "SectionTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

TEST(CTestHIL, ReadsParamsInFileOrderAndWritesThemBack)
{
    const std::string text = "hil:\n"
                             "  params:\n"
                             "    Out1: 1\n"
                             "    AnalogIn: 2.5\n"
                             "    \"Name\": 'x'\n";
    auto host = parsed(text);
    EXPECT_EQ((StrVector{"Out1", "AnalogIn", "\"Name\""}), host->hil.getHILParamKeys());
    StrVector values{"kept"};
    host->hil.getHILParamValues(values);
    EXPECT_EQ((StrVector{"kept", "1", "2.5", "'x'"}), values);
    EXPECT_EQ(text, toYaml(*host));
}

TEST(CTestHIL, FlowStyleAnchorsAndTagsSurviveAndASecondParamsKeyReplaces)
{
    const std::string text = "hil: &h {params: !p {b: 2, a: 1}}\n";
    auto host = parsed(text);
    EXPECT_EQ((StrVector{"b", "a"}), host->hil.getHILParamKeys());
    EXPECT_EQ(text, toYaml(*host));
    EXPECT_EQ((StrVector{"c"}), parsed("hil:\n  params: {a: 1, b: 2}\n  params: {c: 3}\n")->hil.getHILParamKeys());
}

TEST(CTestHIL, EmptyWithoutParamsButWritesAnEmptyMappingWhenAsked)
{
    auto host = parsed("hil: {}\n");
    EXPECT_TRUE(host->hil.isEmpty());
    EXPECT_EQ("{}\n", toYaml(host->hil));
    EXPECT_TRUE(parsed("hil: {params: {}}\n")->hil.isEmpty());
}

TEST(CTestHIL, RefusalsNameTheFaultAndItsPlace)
{
    expectRefusals({
        {"hil:\n  params: {a: 1}\nhil:\n  params: {b: 2}\n", "Mapping not allowed at this point!", "[Line: 4  Col: 9]"},
        {"hil: 5\n", "Scalar value not allowed for 'hil' section: ", "[Line: 2  Col: 0]"},
        {"hil:\n  other: {a: 1}\n", "Invalid item defined in section 'hil': other", "[Line: 2  Col: 8]"},
        {"hil:\n  params: {a: 1}\n  x: 2\n", "Invalid item defined in section 'hil': x", "[Line: 3  Col: 4]"},
        {"hil: [a]\n", "Sequence not allowed in 'hil' section: ''", "[Line: 1  Col: 6]"},
        {"hil:\n  params: 3\n", "Scalar value outside mapping section: ", "[Line: 3  Col: 0]"},
        {"hil:\n  params: {a: {b: 1}}\n", "Nested maps are not allowed!", "[Line: 2  Col: 15]"},
        {"hil:\n  params: {a: 1, a: 2}\n", "Duplicate keys are not allowed in map: a", "[Line: 2  Col: 21]"},
    });
}

TEST(CTestHIL, SetParamsReplacesEntriesAndKeepsTheBlockStyle)
{
    auto host = parsed("hil:\n  params:\n    a: 1\n");
    host->hil.setParams("{z: \"on\", y: 0x10}");
    EXPECT_EQ("Duplicate keys are not allowed in map: z", refusal([&] { host->hil.setParams("{z: 1, z: 2}"); }));
    EXPECT_EQ("hil:\n  params:\n    z: \"on\"\n    y: 0x10\n", toYaml(*host));

    host->hil.setParams("");
    EXPECT_TRUE(host->hil.isEmpty());
}

TEST(CTestHIL, AssignmentCopiesParamsButKeepsTheOwner)
{
    auto source = parsed("hil: {params: {a: 1}}\n");
    SectionHost target;
    target.hil = source->hil;
    EXPECT_EQ(&target, target.hil.getParent());
    source->hil.setParams("{b: 2}");
    EXPECT_EQ("hil: {params: {a: 1}}\n", toYaml(target));
}

} // namespace
