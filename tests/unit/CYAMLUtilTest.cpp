#include <gtest/gtest.h>

#include <string>

#include "CYAMLScalar.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;

namespace {

typedef std::vector<std::string> Lines;

const std::string MULTIPLE = "Scalar consists of multiple items. Use quotes to make it a single scalar!\n";

} // namespace

TEST(CYAMLUtil, ParseScalarKeepsQuotingStyle)
{
    CYAMLScalar out;
    CYAMLUtil::parseScalar(out, "\"a, b\"");
    EXPECT_EQ("a, b", out.getValue());
    EXPECT_EQ(3, out.getStyle());
    CYAMLUtil::parseScalar(out, " plain ");
    EXPECT_EQ("plain", out.getValue());
    EXPECT_EQ(1, out.getStyle());
    CYAMLUtil::parseScalar(out, "");
    EXPECT_EQ("", out.getValue());
    EXPECT_EQ(0, out.getStyle());
    EXPECT_EQ(1, out.getPlainImplicit());
}

TEST(CYAMLUtil, ParseScalarRefusesNoneOrSeveralItems)
{
    CYAMLScalar out("kept");
    EXPECT_EQ(MULTIPLE + "  data:\n    scalar: a, b\n",
              failureOf<ParserException>([&] { CYAMLUtil::parseScalar(out, "a, b"); }));
    EXPECT_EQ("Empty scalars are not allowed!\n",
              failureOf<ParserException>([&] { CYAMLUtil::parseScalar(out, "   "); }));
    EXPECT_EQ("kept", out.getValue()) << "a failed parse leaves the output alone";
    const std::string mapping = failureOf<ParserException>([&] { CYAMLUtil::parseScalar(out, "k: v"); });
    EXPECT_EQ(0u, mapping.rfind("Illegal argument\n", 0)) << mapping;
    EXPECT_NE(std::string::npos, mapping.find("\n      [k: v]\n")) << mapping;
    EXPECT_NE(std::string::npos, mapping.find("Error: Sequence of scalars expected, found mapping start!")) << mapping;
}

TEST(CYAMLUtil, ParseYAMLListAndMapGiveExpressionTexts)
{
    StrVector out{"stale"};
    CYAMLUtil::parseYAMLList(out, "[1, \"s\", 'c', 'long', x y]");
    EXPECT_EQ((Lines{"1", "\"s\"", "'c'", "long", "x y"}), out);
    CYAMLUtil::parseYAMLList(out, "- a\n- b\n");
    EXPECT_EQ((Lines{"a", "b"}), out);
    EXPECT_NE(std::string::npos, failureOf<ParserException>([&] { CYAMLUtil::parseYAMLList(out, "[a, [b]]"); })
                                     .find("Error: Nested sequences are not allowed!"));
    EXPECT_EQ((Lines{"a", "b"}), out);

    StrVector keys{"x"}, values{"y"};
    CYAMLUtil::parseYAMLMap(keys, values, "{b: 1, a: \"2\", c: '3'}");
    EXPECT_EQ((Lines{"b", "a", "c"}), keys);
    EXPECT_EQ((Lines{"1", "\"2\"", "'3'"}), values);
    StrStrMap map{{"old", "1"}};
    CYAMLUtil::parseYAMLMap(map, "b: 1\na: \"2\"\n");
    EXPECT_EQ((StrStrMap{{"a", "\"2\""}, {"b", "1"}}), map);
    EXPECT_THROW(CYAMLUtil::parseYAMLMap(map, "{x: 1, x: 2}"), ParserException);
    EXPECT_EQ((StrStrMap{{"a", "\"2\""}, {"b", "1"}}), map) << "a failed parse leaves the output alone";
}

TEST(CYAMLUtil, StrVector2StrJoinsWithCommaAndBlank)
{
    EXPECT_EQ("", CYAMLUtil::strVector2Str({}));
    EXPECT_EQ("a, , c", CYAMLUtil::strVector2Str({"a", "", "c"}));
}

TEST(CYAMLUtil, VerifyScalarAndLimitedScalar)
{
    CYAMLUtil::verifyScalar("");
    CYAMLUtil::verifyScalar("'a, b'");
    CYAMLUtil::verifyLimitedScalar("a.b-c_1:/x", "test ID");
    CYAMLUtil::verifyLimitedScalar("", "test ID");
    EXPECT_EQ("Empty scalars are not allowed!\n", failureOf<ParserException>([] { CYAMLUtil::verifyScalar(" "); }));
    EXPECT_EQ(MULTIPLE + "  data:\n    scalar: a,b\n",
              failureOf<ParserException>([] { CYAMLUtil::verifyScalar("a,b"); }));
    const std::string open = failureOf<ParserException>([] { CYAMLUtil::verifyScalar("\"open"); });
    EXPECT_EQ(0u, open.rfind("YAML syntax error\n", 0)) << open;
    EXPECT_EQ("Only subset of all characters is allowed: letters, numbers, and symbols: _-./:\n"
              "  data:\n    description: test ID\n    invalidString: a b\n    forbiddenChar: ' '\n",
              failureOf<IllegalArgumentException>([] { CYAMLUtil::verifyLimitedScalar("a b", "test ID"); }));
    EXPECT_EQ("Scalar consists of multiple items. Remove commas!\n  data:\n    scalar: a,b\n",
              failureOf<ParserException>([] { CYAMLUtil::verifyLimitedScalar("a,b", "tag"); }));
}

TEST(CYAMLUtil, VerifyListAndMapReportParserErrors)
{
    CYAMLUtil::verifyList("[a, 'b']");
    CYAMLUtil::verifyMap("a: 1");
    EXPECT_THROW(CYAMLUtil::verifyList("a: 1"), ParserException);
    EXPECT_THROW(CYAMLUtil::verifyMap("{a: [1]}"), ParserException);
    EXPECT_THROW(CYAMLUtil::verifyMap("{a: 1"), ParserException);
}
