#include <gtest/gtest.h>

#include "SectionTestSupport.h"

using namespace kestrix;
using namespace kestrix_test;

namespace {

TEST(CTestFunction, ReadsEachAcceptedFormAndWritesItsShortestForm)
{
    // text, name, parameters, return value name, text written
    const char* const forms[][5] = {
        {"[f]", "f", "", "", "[f]"},
        {"[f, []]", "f", "", "", "[f]"},
        {"[f, [a, b]]", "f", "a, b", "", "[f, [a, b]]"},
        {"[f, [], r]", "f", "", "r", "[f, [], r]"},
        {"[f, [a, b], r]", "f", "a, b", "r", "[f, [a, b], r]"},
        {"[f, {}, r]", "f", "", "r", "[f, [], r]"},
    };
    for (const auto& form : forms) {
        SCOPED_TRACE(form[0]);
        auto host = parsed(std::string("func: ") + form[0] + "\n");
        EXPECT_EQ(form[1], host->func.getName());
        StrVector params;
        host->func.getPositionParams(params);
        EXPECT_EQ(form[2], CYAMLUtil::strVector2Str(params));
        EXPECT_EQ(std::string(form[2]).empty(), !host->func.hasPositionParams());
        EXPECT_EQ(form[3], host->func.getRetValueName());
        EXPECT_EQ(std::string("func: ") + form[4] + "\n", toYaml(*host));
    }
}

TEST(CTestFunction, RoundTripKeepsBlockStyleQuotesAnchorsAndTags)
{
    for (const std::string text :
         {"func:\n- f\n- - a\n  - 2\n- r\n", "func: &fn [\"my f\", [\"abc\", 'c', 'long', x], !t 'r']\n"}) {
        EXPECT_EQ(text, toYaml(*parsed(text)));
    }
}

TEST(CTestFunction, PositionParamsAreExpressionText)
{
    auto host = parsed("func: [f, [\"abc\", 'c', '\\n', 'long', x + 1]]\n");
    StrVector params{"kept"};
    host->func.getPositionParams(params);
    EXPECT_EQ((StrVector{"kept", "\"abc\"", "'c'", "'\\n'", "long", "x + 1"}), params);
}

TEST(CTestFunction, RefusalsNameTheFaultAndItsPlace)
{
    expectRefusals(
        {{"func: f\n",
          "Function call specification should be described as a list: '[funcName, ...]'! Given as scalar: 'f'",
          "[Line: 2  Col: 0]"},
         {"func: [f, r]\n",
          "List of parameters missing after function name. If there are no parameters, specify "
          "empty list as [], for example: func: [f, [], reValName]",
          "[Line: 1  Col: 12]"},
         {"func: []\n", "Invalid section at sequence end: 1", "[Line: 1  Col: 8]"},
         {"func: {a: 1}\n", "Function name must be the first item!", "[Line: 1  Col: 7]"},
         {"func: [{a: 1}]\n", "Parameters expected!", "[Line: 1  Col: 14]"},
         {"func: [f, {a: 1}]\n", "Invalid section for map in function tag. Value: 1", "[Line: 1  Col: 17]"},
         {"func: [f, {a: }]\n", "Invalid section for map in function tag. Value: ", "[Line: 1  Col: 16]"},
         {"func: [f, [a, [b]]]\n", "Invalid specification for function call! Unexpected sequence start!",
          "[Line: 1  Col: 19]"},
         {"func: [f, [], r, x]\n", "Internal error in section 'function'. Invalid state: 6   Scalar value: x",
          "[Line: 1  Col: 19]"},
         {"func: [f, [], [r]]\n", "Invalid specification for function call! Unexpected sequence start!",
          "[Line: 1  Col: 18]"},
         {"func: [f]\nfunc: [g]\n", "Invalid specification for function call! Unexpected sequence start!",
          "[Line: 2  Col: 7]"},
         {"func:\n- f\n- - a\n  - b: 1\n", "Parameters expected!", "[Line: 4  Col: 6]"}});
}

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

TEST(CTestFunction, SettersParseYamlTextKeepTheListStyleAndRefuseWithoutChange)
{
    auto host = parsed("func:\n- f\n- - a\n");
    host->func.setName("\"g h\"");
    host->func.setRetValueName("'r'");
    host->func.setPositionParameters("[1, \"s\"]");
    EXPECT_EQ("g h", host->func.getName());
    EXPECT_EQ("func:\n- \"g h\"\n- - 1\n  - \"s\"\n- 'r'\n", toYaml(*host));

    EXPECT_EQ("Scalar consists of multiple items. Use quotes to make it a single scalar!",
              refusal([&] { host->func.setName("a, b"); }));
    EXPECT_NE("no exception", refusal([&] { host->func.setRetValueName("[x"); }));
    EXPECT_EQ("Nested sequences are not allowed!", refusal([&] { host->func.setPositionParameters("[x, [y]]"); }));
    EXPECT_EQ("func:\n- \"g h\"\n- - 1\n  - \"s\"\n- 'r'\n", toYaml(*host));

    host->func.setPositionParameters("");
    EXPECT_FALSE(host->func.hasPositionParams());
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
