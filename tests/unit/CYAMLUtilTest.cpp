#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "CYAMLScalar.h"
#include "CYAMLUtil.h"
#include "Exceptions.h"
#include "RecordingReceiver.h"

using namespace kestrix;

namespace {

typedef std::vector<std::string> Lines;

template <class E, class F>
E thrown(F call)
{
    try {
        call();
    } catch (const E& e) {
        return e;
    } catch (const std::exception& e) {
        ADD_FAILURE() << "other exception: " << e.what();
    }
    ADD_FAILURE() << "nothing thrown";
    return E(KX_POS, "none");
}

} // namespace

TEST(CYAMLUtil, ParseScalarKeepsQuotingStyle)
{
    CYAMLScalar out;
    CYAMLUtil::parseScalar(out, "\"a, b\"");
    EXPECT_EQ("a, b", out.getValue());
    EXPECT_EQ(3, out.getStyle());
    CYAMLUtil::parseScalar(out, "'c'");
    EXPECT_EQ("'c'", toExpressionText(out));
    CYAMLUtil::parseScalar(out, " plain ");
    EXPECT_EQ("plain", out.getValue());
    EXPECT_EQ(1, out.getStyle());
}

TEST(CYAMLUtil, ParseScalarOfAnEmptyTextIsAnEmptyPlainScalar)
{
    CYAMLScalar out("before");
    out.setStyle(3);
    CYAMLUtil::parseScalar(out, "");
    EXPECT_EQ("", out.getValue());
    EXPECT_EQ(0, out.getStyle());
    EXPECT_EQ(1, out.getPlainImplicit());
}

TEST(CYAMLUtil, ParseScalarRefusesNoneOrSeveralItems)
{
    CYAMLScalar out("kept");
    auto several = thrown<ParserException>([&] { CYAMLUtil::parseScalar(out, "a, b"); });
    EXPECT_EQ("Scalar consists of multiple items. Use quotes to make it a single scalar!", several.getDesc());
    EXPECT_EQ("  data:\n    scalar: a, b\n", several.getData());
    auto none = thrown<ParserException>([&] { CYAMLUtil::parseScalar(out, "   "); });
    EXPECT_EQ("Empty scalars are not allowed!", none.getDesc());
    EXPECT_EQ("kept", out.getValue()) << "a failed parse leaves the output alone";
}

TEST(CYAMLUtil, ParseScalarErrorShowsTheWrappedText)
{
    CYAMLScalar out;
    auto e = thrown<ParserException>([&] { CYAMLUtil::parseScalar(out, "k: v"); });
    EXPECT_EQ("Illegal argument", e.getDesc());
    EXPECT_NE(std::string::npos, e.getData().find("\n      [k: v]\n")) << e.getData();
    EXPECT_NE(std::string::npos, e.getData().find("Error: Sequence of scalars expected, found mapping start!"))
        << e.getData();
}

TEST(CYAMLUtil, ParseYAMLListGivesExpressionTexts)
{
    StrVector out{"stale"};
    CYAMLUtil::parseYAMLList(out, "[1, \"s\", 'c', 'long', x y]");
    EXPECT_EQ((Lines{"1", "\"s\"", "'c'", "long", "x y"}), out);
    CYAMLUtil::parseYAMLList(out, "- a\n- b\n");
    EXPECT_EQ((Lines{"a", "b"}), out);
    auto e = thrown<ParserException>([&] { CYAMLUtil::parseYAMLList(out, "[a, [b]]"); });
    EXPECT_NE(std::string::npos, e.getData().find("Error: Nested sequences are not allowed!")) << e.getData();
    EXPECT_EQ((Lines{"a", "b"}), out);
}

TEST(CYAMLUtil, ParseYAMLMapInBothForms)
{
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
    EXPECT_EQ("a", CYAMLUtil::strVector2Str({"a"}));
    EXPECT_EQ("a, , c", CYAMLUtil::strVector2Str({"a", "", "c"}));
}

TEST(CYAMLUtil, VerifyScalar)
{
    CYAMLUtil::verifyScalar("");
    CYAMLUtil::verifyScalar("'a, b'");
    EXPECT_EQ("Empty scalars are not allowed!", thrown<ParserException>([] { CYAMLUtil::verifyScalar(" "); }).getDesc());
    auto e = thrown<ParserException>([] { CYAMLUtil::verifyScalar("a,b"); });
    EXPECT_EQ("Scalar consists of multiple items. Use quotes to make it a single scalar!", e.getDesc());
    EXPECT_EQ("  data:\n    scalar: a,b\n", e.getData());
    EXPECT_EQ("YAML syntax error", thrown<ParserException>([] { CYAMLUtil::verifyScalar("\"open"); }).getDesc());
}

TEST(CYAMLUtil, VerifyLimitedScalar)
{
    CYAMLUtil::verifyLimitedScalar("a.b-c_1:/x", "test ID");
    CYAMLUtil::verifyLimitedScalar("", "test ID");
    auto blank = thrown<IllegalArgumentException>([] { CYAMLUtil::verifyLimitedScalar("a b", "test ID"); });
    EXPECT_EQ("Only subset of all characters is allowed: letters, numbers, and symbols: _-./:", blank.getDesc());
    EXPECT_EQ("  data:\n    description: test ID\n    invalidString: a b\n    forbiddenChar: ' '\n", blank.getData());
    auto commas = thrown<ParserException>([] { CYAMLUtil::verifyLimitedScalar("a,b", "tag"); });
    EXPECT_EQ("Scalar consists of multiple items. Remove commas!", commas.getDesc());
    EXPECT_EQ("  data:\n    scalar: a,b\n", commas.getData());
}

TEST(CYAMLUtil, VerifyListAndMapReportParserErrors)
{
    CYAMLUtil::verifyList("[a, 'b']");
    CYAMLUtil::verifyMap("a: 1");
    EXPECT_THROW(CYAMLUtil::verifyList("a: 1"), ParserException);
    EXPECT_THROW(CYAMLUtil::verifyMap("{a: [1]}"), ParserException);
    EXPECT_THROW(CYAMLUtil::verifyMap("{a: 1"), ParserException);
}

TEST(CYAMLUtil, ParseYAMLFromAFileAfterTheSeekPosition)
{
    std::string path = ::testing::TempDir() + "cyamlutil_seek.yaml";
    std::ofstream(path) << "not yaml: [\nk: v\n";
    kestrix::testing::RecordingReceiver receiver;
    CYAMLUtil::parseYAML(receiver, path, 12);
    EXPECT_EQ((Lines{"+MAP", "key =VAL :k", "value =VAL :v", "-MAP"}), receiver.events);
    std::remove(path.c_str());
    EXPECT_THROW(CYAMLUtil::parseYAML(receiver, path, 0), IOException);
}
