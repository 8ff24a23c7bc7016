#include <gtest/gtest.h>

#include "SectionTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

const char* const FULL_STUB = "stubs:\n"
                              "- func: [read_sensor, srv]\n"
                              "  params: [p1, \"p2\"]\n"
                              "  assign:\n"
                              "    srv: 42\n"
                              "    g_calls: g_calls + 1\n"
                              "    \"s\": 'c'\n"
                              "  script: [on_stub, [p1], r]\n";

TEST(CTestStub, ReadsAllKeysAndWritesThemBackInOrder)
{
    auto host = parsed(FULL_STUB);
    ASSERT_EQ(1u, host->stubs.size());
    const CTestStub& stub = *host->stubs[0];
    EXPECT_EQ("srv", stub.getRetValName());
    StrVector names{"kept"};
    stub.getParamNames(names);
    EXPECT_EQ((StrVector{"kept", "p1", "\"p2\""}), names) << "appended; expression texts";
    EXPECT_EQ((StrVector{"srv", "g_calls", "\"s\""}), stub.getAssignmentKeys());
    StrVector values;
    stub.getAssignmentValues(values);
    EXPECT_EQ((StrVector{"42", "g_calls + 1", "'c'"}), values);
    EXPECT_EQ(FULL_STUB, toYaml(*host));
}

TEST(CTestStub, KeysAreWrittenInTheFixedOrderAndRepeatedKeysReplace)
{
    const std::pair<const char*, const char*> cases[] = {
        {"stubs:\n- script: [s]\n  assign: {a: 1}\n  params: [x]\n  func: [f]\n- func:\n  - g\n  - rv\n",
         "stubs:\n- func: [f]\n  params: [x]\n  assign: {a: 1}\n  script: [s]\n- func:\n  - g\n  - rv\n"},
        {"stubs:\n- func: [a, b]\n  params: [x, y]\n  assign: {v: 1, w: 2}\n  func: [c]\n  params: [z]\n"
         "  assign: {u: 3}\n",
         "stubs:\n- func: [c]\n  params: [z]\n  assign: {u: 3}\n"},
        // A stub without func still writes the func list.
        {"stubs:\n- params: [a]\n", "stubs:\n- func:\n  -\n  params: [a]\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.first);
        EXPECT_EQ(c.second, toYaml(*parsed(c.first)));
    }
    EXPECT_EQ("", parsed("stubs:\n- func:\n  -\n  params: [a]\n")->stubs[0]->getFunctionName());
    EXPECT_EQ("func:\n-\n", toYaml(*std::make_unique<CTestStub>())) << "a new stub";
}

TEST(CTestStub, RefusalsNameTheFaultAndItsPlace)
{
    expectRefusals({
        {"stubs:\n- func: [a, b, c]\n",
         "At most two scalars are allowed for stub function section: 'func. name' and 'retValName'", "[Line: 2  Col: 17]"},
        {"stubs:\n- func: x\n", "Scalar value not allowed for stub section: func", "[Line: 3  Col: 0]"},
        {"stubs:\n- func: [f]\n  other: 1\n", "Invalid item defined in stub: other", "[Line: 3  Col: 8]"},
        {"stubs:\n- func: {a: 1}\n", "Mapping not allowed at that point!", "[Line: 2  Col: 9]"},
        {"stubs:\n- func: [a, [b]]\n", "Sequence not allowed for stub item: 'func'", "[Line: 2  Col: 16]"},
        {"stubs:\n- ? [a]\n  : b\n", "Sequence not allowed for stub item: ''", "[Line: 3  Col: 3]"},
        {"stubs:\n- params: {a: 1}\n", "Sequence of scalars expected, found mapping start!", "[Line: 2  Col: 11]"},
        {"stubs:\n- assign: [a]\n", "No sequences allowed inside mapping!", "[Line: 2  Col: 11]"},
        {"stubs:\n- assign: {a: 1, a: 2}\n", "Duplicate keys are not allowed in map: a", "[Line: 2  Col: 21]"},
        {"stubs:\n- script: f\n",
         "Function call specification should be described as a list: '[funcName, ...]'! Given as scalar: 'f'",
         "[Line: 3  Col: 0]"},
        {"stubs:\n- script: [f]\n  script: [g]\n", "Invalid specification for function call! Unexpected sequence start!",
         "[Line: 3  Col: 11]"},
    });
}

TEST(CTestStub, CopyIsDeepAndOwnsItsScript)
{
    auto host = parsed(FULL_STUB);
    const CTestStub& original = *host->stubs[0];
    CTestStub copy(original);
    EXPECT_EQ(&copy, copy.getScriptFunction().getParent());
    EXPECT_EQ(host.get(), copy.getParent());

    copy.setAssignments("{x: 0}");
    copy.getScriptFunction().setName("other");
    EXPECT_EQ(FULL_STUB, toYaml(*host));
    EXPECT_EQ("func: [read_sensor, srv]\nparams: [p1, \"p2\"]\nassign:\n  x: 0\nscript: [other, [p1], r]\n",
              toYaml(copy));
}

TEST(CTestStub, SettersParseYamlTextKeepBlockStylesAndRefuseWithoutChange)
{
    auto host = parsed(FULL_STUB);
    CTestStub& stub = *host->stubs[0];
    stub.setFunctionName("\"f g\"");
    stub.setRetValName("");
    stub.setParamNames("[a, 'b']");
    stub.setAssignments("{k: \"v\", j: 2}");
    EXPECT_EQ("Scalar consists of multiple items. Use quotes to make it a single scalar!",
              refusal([&] { stub.setFunctionName("a, b"); }));
    EXPECT_EQ("Duplicate keys are not allowed in map: a", refusal([&] { stub.setAssignments("{a: 1, a: 2}"); }));
    EXPECT_EQ("Nested sequences are not allowed!", refusal([&] { stub.setParamNames("[a, [b]]"); }));
    EXPECT_EQ("stubs:\n"
              "- func: [\"f g\"]\n"
              "  params: [a, 'b']\n"
              "  assign:\n"
              "    k: \"v\"\n"
              "    j: 2\n"
              "  script: [on_stub, [p1], r]\n",
              toYaml(*host));

    stub.setAssignments("");
    stub.setParamNames("[]");
    EXPECT_TRUE(stub.getAssignmentKeys().empty());
    EXPECT_EQ("stubs:\n- func: [\"f g\"]\n  script: [on_stub, [p1], r]\n", toYaml(*host));
}

} // namespace
