#include <gtest/gtest.h>

#include "SectionTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

struct FunctionForm {
    const char* text;
    const char* name;
    const char* params;
    const char* retVal;
    const char* written;
};

class CTestFunctionForms : public ::testing::TestWithParam<FunctionForm> {};

TEST_P(CTestFunctionForms, ReadsEachAcceptedFormAndWritesItsShortestForm)
{
    const FunctionForm& form = GetParam();
    auto host = parsed(std::string("func: ") + form.text + "\n");

    EXPECT_EQ(form.name, host->func.getName());
    StrVector params;
    host->func.getPositionParams(params);
    EXPECT_EQ(form.params, CYAMLUtil::strVector2Str(params));
    EXPECT_EQ(std::string(form.params).empty(), !host->func.hasPositionParams());
    EXPECT_EQ(form.retVal, host->func.getRetValueName());
    EXPECT_EQ(std::string("func: ") + form.written + "\n", toYaml(*host));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, CTestFunctionForms,
    ::testing::Values(FunctionForm{"[f]", "f", "", "", "[f]"},
                      FunctionForm{"[f, []]", "f", "", "", "[f]"},
                      FunctionForm{"[f, [a, b]]", "f", "a, b", "", "[f, [a, b]]"},
                      FunctionForm{"[f, [], r]", "f", "", "r", "[f, [], r]"},
                      FunctionForm{"[f, [a, b], r]", "f", "a, b", "r", "[f, [a, b], r]"},
                      FunctionForm{"[f, {}, r]", "f", "", "r", "[f, [], r]"}));

TEST(CTestFunction, BlockStyleIsReadAndWrittenBack)
{
    const std::string text = "func:\n- f\n- - a\n  - 2\n- r\n";
    auto host = parsed(text);
    EXPECT_EQ("f", host->func.getName());
    EXPECT_EQ("r", host->func.getRetValueName());
    EXPECT_EQ(text, toYaml(*host));
}

TEST(CTestFunction, RoundTripKeepsQuotesAnchorsAndTags)
{
    const std::string text = "func: &fn [\"my f\", [\"abc\", 'c', 'long', x], !t 'r']\n";
    auto host = parsed(text);
    const std::string written = toYaml(*host);
    EXPECT_EQ(text, written);
    EXPECT_EQ(written, toYaml(*parsed(written)));
}

TEST(CTestFunction, PositionParamsAreExpressionText)
{
    auto host = parsed("func: [f, [\"abc\", 'c', '\\n', 'long', x + 1]]\n");
    StrVector params{"kept"};
    host->func.getPositionParams(params);
    EXPECT_EQ((StrVector{"kept", "\"abc\"", "'c'", "'\\n'", "long", "x + 1"}), params);
}

struct Refusal {
    const char* text;
    const char* message;
    int line;
};

class CTestFunctionRefusals : public ::testing::TestWithParam<Refusal> {};

TEST_P(CTestFunctionRefusals, NamesTheFaultAndItsPlace)
{
    const Refusal& refusal = GetParam();
    ParseFailure failure = parseFailure(refusal.text);
    EXPECT_EQ(refusal.message, failure.message);
    EXPECT_EQ(0u, failure.position.find("[Line: " + std::to_string(refusal.line) + "  Col: ")) << failure.position;
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, CTestFunctionRefusals,
    ::testing::Values(
        Refusal{"func: f\n",
                "Function call specification should be described as a list: '[funcName, ...]'! "
                "Given as scalar: 'f'",
                2},
        Refusal{"func: [f, r]\n",
                "List of parameters missing after function name. If there are no parameters, specify "
                "empty list as [], for example: func: [f, [], reValName]",
                1},
        Refusal{"func: []\n", "Invalid section at sequence end: 1", 1},
        Refusal{"func: {a: 1}\n", "Function name must be the first item!", 1},
        Refusal{"func: [{a: 1}]\n", "Parameters expected!", 1},
        Refusal{"func: [f, {a: 1}]\n", "Invalid section for map in function tag. Value: 1", 1},
        Refusal{"func: [f, {a: }]\n", "Invalid section for map in function tag. Value: ", 1},
        Refusal{"func: [f, [a, [b]]]\n", "Invalid specification for function call! Unexpected sequence start!",
                1},
        Refusal{"func: [f, [], r, x]\n", "Internal error in section 'function'. Invalid state: 6   Scalar value: x",
                1},
        Refusal{"func: [f, [], [r]]\n", "Invalid specification for function call! Unexpected sequence start!",
                1},
        Refusal{"func: [f]\nfunc: [g]\n", "Invalid specification for function call! Unexpected sequence start!",
                2},
        Refusal{"func:\n- f\n- - a\n  - b: 1\n", "Parameters expected!", 4}));

TEST(CTestFunction, EmptyWithoutNameAndThenWritesNothing)
{
    SectionHost host;
    EXPECT_TRUE(host.func.isEmpty());
    host.func.setRetValueName("r");
    host.func.setPositionParameters("[1]");
    EXPECT_TRUE(host.func.isEmpty());
    EXPECT_EQ("{}\n", toYaml(host));
    host.func.setName("f");
    EXPECT_FALSE(host.func.isEmpty());
    EXPECT_EQ("func: [f, [1], r]\n", toYaml(host));
}

TEST(CTestFunction, SettersParseYamlTextAndKeepTheListStyle)
{
    auto host = parsed("func:\n- f\n- - a\n");
    host->func.setName("\"g h\"");
    host->func.setRetValueName("'r'");
    host->func.setPositionParameters("[1, \"s\"]");
    EXPECT_EQ("g h", host->func.getName());
    EXPECT_EQ("r", host->func.getRetValueName());
    EXPECT_EQ("func:\n- \"g h\"\n- - 1\n  - \"s\"\n- 'r'\n", toYaml(*host));

    host->func.setPositionParameters("");
    EXPECT_FALSE(host->func.hasPositionParams());
}

TEST(CTestFunction, FailedSetterLeavesTheFieldAsItWas)
{
    auto host = parsed("func: [f, [a], r]\n");
    EXPECT_EQ("Scalar consists of multiple items. Use quotes to make it a single scalar!",
              refusal([&] { host->func.setName("a, b"); }));
    EXPECT_NE("no exception", refusal([&] { host->func.setRetValueName("[x"); }));
    EXPECT_EQ("Nested sequences are not allowed!", refusal([&] { host->func.setPositionParameters("[x, [y]]"); }));
    EXPECT_EQ("func: [f, [a], r]\n", toYaml(*host));
}

TEST(CTestFunction, AssignmentCopiesContentButKeepsTheOwner)
{
    auto source = parsed("func: [f, [a], r]\n");
    SectionHost target;
    target.func = source->func;
    EXPECT_EQ(&target, target.func.getParent());
    EXPECT_EQ("func: [f, [a], r]\n", toYaml(target));
    // The copy is finished as the source is: a further list is refused.
    EXPECT_EQ("Invalid specification for function call! Unexpected sequence start!",
              parseFailure(target.func, "[g]").message);
}

} // namespace
