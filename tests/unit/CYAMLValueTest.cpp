#include <gtest/gtest.h>

#include "CYAMLBool.h"
#include "CYAMLEnum.h"
#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"
#include "YamlTestSupport.h"

using namespace kestrix;
using kestrix_test::failureOf;
using kestrix_test::ParsedEvents;

namespace kestrix {
// Stand-ins for the section enumerations, bound to the tables the sections use.
enum class TestExport { html, text, csv, xml, reviewHtml, reviewText, xml2 };
enum TestFormat { fmtXml, fmtYaml };
KX_YAML_ENUM_TABLE(TestExport, CYAMLEnumTables::COVERAGE_EXPORT)
KX_YAML_ENUM_TABLE(TestFormat, CYAMLEnumTables::OUTPUT_FORMAT)
} // namespace kestrix

namespace {

/// The scalar of the first mapping value in `yaml` ("k: <value>").
CYAMLScalar valueOf(const std::string& yaml)
{
    ParsedEvents events(yaml);
    return CYAMLScalar(events.get(YAML_SCALAR_EVENT, 1));
}

} // namespace

TEST(CYAMLScalarTest, ExpressionAndQuotedTextsKeepTheInputQuoting)
{
    // Single quotes stay only around what reads as one character.
    const std::vector<std::vector<std::string>> rows = {
        // input, expression text, quoted text
        {"\"abc\"", "\"abc\"", "\"abc\""}, {"abc", "abc", "abc"},  {"'a'", "'a'", "'a'"},
        {"'\\n'", "'\\n'", "'\\n'"},       {"''", "''", "''"},     {"'abc'", "abc", "'abc'"},
        {"'ab'", "ab", "'ab'"},
        // libyaml writes a plain text that cannot stand plain quoted behind the non-specific tag;
        // it reads back as plain implicit, so the quotes are not part of the text.
        {"! \"a\tb == 1\"", "a\tb == 1", "a\tb == 1"}, {"! '-'", "-", "-"}, {"! ''", "", ""},
        {"! 'a: b'", "a: b", "a: b"},
        // Any other tag keeps the quotes' meaning.
        {"!local 'a'", "'a'", "'a'"}, {"!!str \"s\"", "\"s\"", "\"s\""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row[0]);
        const CYAMLScalar scalar = valueOf("k: " + row[0]);
        EXPECT_EQ(row[1], toExpressionText(scalar));
        EXPECT_EQ(row[2], toQuotedText(scalar));
    }
}

TEST(CYAMLScalarTest, EventValueKeepsAnEmbeddedNul)
{
    const CYAMLScalar scalar = valueOf("k: \"a\\0b\"");
    EXPECT_EQ(std::string("a\0b", 3), scalar.getValue());
    EXPECT_EQ(3u, scalar.getLength());
}

TEST(CYAMLScalarTest, NumbersAndNewValuesArePlain)
{
    const CYAMLScalar fromInt(-5);
    EXPECT_EQ("-5", fromInt.getValue());
    EXPECT_EQ(1, fromInt.getPlainImplicit());
    EXPECT_EQ("4000000000", CYAMLScalar(4000000000u).getValue());
    EXPECT_EQ("-9000000000", CYAMLScalar(-9000000000LL).getValue());
    EXPECT_EQ("1e+20", CYAMLScalar(1e20).getValue());
    EXPECT_EQ("0.333333", CYAMLScalar(1.0 / 3).getValue());

    // A new value is plain, but the style of the parsed text stays.
    CYAMLScalar scalar = valueOf("k: \"abc\"");
    scalar.setValue("xy");
    EXPECT_EQ(2u, scalar.getLength());
    EXPECT_EQ(1, scalar.getPlainImplicit());
    EXPECT_EQ(0, scalar.getQuotedImplicit());
    EXPECT_EQ(3, scalar.getStyle());
    // ... and its quotes no longer count: libyaml writes it as `! "xy"`, which reads as plain text.
    EXPECT_EQ("xy", toExpressionText(scalar));
    EXPECT_EQ("xy", toQuotedText(scalar));
}

// An empty node behind a bare "!" has neither implicit flag; handed to libyaml like that, the
// tag would be written as `!<%21>` and read back as plain implicit, spelt `!` on the next save.
TEST(CYAMLScalarTest, NonSpecificTagGoesToLibyamlAsThePlainImplicitFlag)
{
    const std::vector<std::vector<std::string>> rows = {
        // flow sequence item, tag kept, tag handed to libyaml, plain and quoted implicit
        {"!", "!", "", "1", "0"},           {"! 'x'", "!", "", "1", "0"}, {"&a !", "!", "", "1", "0"},
        {"!local", "!local", "!local", "0", "0"}, {"'x'", "", "", "0", "1"},   {"x", "", "", "1", "0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row[0]);
        ParsedEvents events("[" + row[0] + " ]");
        const CYAMLScalar scalar(events.get(YAML_SCALAR_EVENT));
        EXPECT_EQ(row[1], scalar.getTag());
        yaml_event_t event;
        scalar.initStartEvent(&event);
        const auto& data = event.data.scalar;
        EXPECT_EQ(row[2], data.tag == nullptr ? "" : reinterpret_cast<const char*>(data.tag));
        EXPECT_EQ(row[3], std::to_string(data.plain_implicit));
        EXPECT_EQ(row[4], std::to_string(data.quoted_implicit));
        yaml_event_delete(&event);
    }
    const CYAMLScalar empty = CYAMLScalar(ParsedEvents("[!,]").get(YAML_SCALAR_EVENT));
    EXPECT_EQ("!", empty.getTag());
    EXPECT_TRUE(empty.isPlainText());
    EXPECT_EQ("", toExpressionText(empty));
}

TEST(CYAMLScalarTest, PlainTextCopyDropsTagAndQuotedFlag)
{
    CYAMLScalar scalar(ParsedEvents("[&n !local 'a']").get(YAML_SCALAR_EVENT));
    EXPECT_FALSE(scalar.isPlainText());
    const CYAMLScalar plain = scalar.toPlainText();
    EXPECT_TRUE(plain.isPlainText());
    EXPECT_EQ("", plain.getTag());
    EXPECT_EQ("n", plain.getAnchor());
    EXPECT_EQ(2, plain.getStyle());
    EXPECT_EQ(1, plain.getPlainImplicit());
    EXPECT_EQ(0, plain.getQuotedImplicit());
    EXPECT_EQ("a", toExpressionText(plain));
}

TEST(CYAMLBoolTest, AcceptsExactlySixWordsAndWritesWords)
{
    for (const char* word : {"true", "1", "yes", "false", "0", "no"}) {
        EXPECT_EQ(word[0] != 'f' && word[0] != '0' && word[0] != 'n',
                  CYAMLBool(valueOf(std::string("k: ") + word)).getBool())
            << word;
    }
    const std::string prefix =
        "Invalid value of bool item. Should be one of 'true', 'false', 'yes', 'no', '1', or '0', but it is: ";
    EXPECT_EQ(prefix + "on\n", failureOf<IllegalArgumentException>([] { CYAMLBool(valueOf("k: on")); }));
    EXPECT_EQ(prefix + "True\n", failureOf<IllegalArgumentException>([] { CYAMLBool::toBool("True"); }));
    EXPECT_EQ(prefix + "\n", failureOf<IllegalArgumentException>([] { CYAMLBool::toBool(""); }));

    // setBool writes the word; a default stays empty, so it is not written.
    CYAMLBool value = CYAMLBool(valueOf("k: 'yes'"));
    value.setBool(false);
    EXPECT_EQ("false", value.getValue());
    EXPECT_EQ(5u, value.getLength());
    value.setDefault(true);
    EXPECT_TRUE(value.isPlainText());
    EXPECT_TRUE(value.getBool());
    const auto copy = value.clone();
    EXPECT_TRUE(dynamic_cast<CYAMLBool&>(*copy).getBool());
}

TEST(CYAMLEnumTest, LooksUpWholeWordsAndSetsByValue)
{
    const CYAMLEnum<TestExport> value(valueOf("k: Review (HTML)"));
    EXPECT_EQ(TestExport::reviewHtml, value.getEnum());
    EXPECT_EQ(TestExport::xml2, CYAMLEnum<TestExport>::lookUp("XML2"));
    EXPECT_EQ("Invalid string value for enum : 'Review'\n",
              failureOf<IllegalArgumentException>([] { CYAMLEnum<TestExport>::lookUp("Review"); }));
    EXPECT_EQ("Invalid string value for enum : 'html'\n",
              failureOf<IllegalArgumentException>([] { CYAMLEnum<TestExport>(CYAMLScalar("html")); }));

    CYAMLEnum<TestFormat> format;
    EXPECT_EQ(fmtXml, format.getEnum());
    format.setEnum(fmtYaml);
    EXPECT_EQ("yaml", format.getValue());
    EXPECT_EQ("Invalid enum value: 2\n",
              failureOf<IllegalArgumentException>([&] { format.setEnum(static_cast<TestFormat>(2)); }));
    const auto copy = format.clone();
    EXPECT_EQ(fmtYaml, dynamic_cast<CYAMLEnum<TestFormat>&>(*copy).getEnum());
    format.setDefault(fmtXml);
    EXPECT_TRUE(format.isPlainText());
}

TEST(CYAMLMapTest, QuotedAndPlainKeysDifferAndDuplicatesFail)
{
    ParsedEvents events("{a: 1, \"a\": 2, 'x': 3}");
    CYAMLMap map(events.get(YAML_MAPPING_START_EVENT));
    for (size_t i = 0; i < 6; i += 2) {
        map.add(CYAMLScalar(events.get(YAML_SCALAR_EVENT, i)),
                std::make_shared<CYAMLScalar>(events.get(YAML_SCALAR_EVENT, i + 1)));
    }
    EXPECT_EQ("2", map.getValue("\"a\"")->asScalar().getValue());
    EXPECT_EQ("1", map.getValue("a")->asScalar().getValue());
    EXPECT_EQ(nullptr, map.getValue("x"));
    EXPECT_TRUE(map.contains(CYAMLScalar("'x'")));
    StrStrMap texts;
    map.getMap(texts);
    EXPECT_EQ((StrStrMap{{"a", "1"}, {"\"a\"", "2"}, {"'x'", "3"}}), texts);

    EXPECT_EQ("Map item with this key is already defined. Duplicates are not allowed!\n  data:\n    key: \"a\"\n",
              failureOf<IllegalArgumentException>(
                  [&] { map.add(CYAMLScalar(events.get(YAML_SCALAR_EVENT, 2)), std::make_shared<CYAMLScalar>()); }));
    EXPECT_EQ(3u, map.getKeyTexts().size());
}

// A plain key that libyaml had to quote (`-` as `! '-'`, an empty key as `! ''`) is the same key
// when read back; the single-quoted character is another.
TEST(CYAMLMapTest, PlainKeyAndItsQuotedFormAreOneKey)
{
    ParsedEvents events("{-: 1, ? : 2, ! '-': 3, ! '': 4, '-': 5}");
    CYAMLMap map;
    for (size_t i = 0; i < 4; i += 2) {
        map.add(CYAMLScalar(events.get(YAML_SCALAR_EVENT, i)), std::make_shared<CYAMLScalar>("v"));
    }
    for (size_t i = 4; i < 8; i += 2) {
        EXPECT_THROW(map.add(CYAMLScalar(events.get(YAML_SCALAR_EVENT, i)), std::make_shared<CYAMLScalar>("v")),
                     IllegalArgumentException);
    }
    map.add(CYAMLScalar(events.get(YAML_SCALAR_EVENT, 8)), std::make_shared<CYAMLScalar>("v"));
    EXPECT_EQ((StrVector{"-", "", "'-'"}), map.getKeyTexts());
}

TEST(CYAMLMapTest, WrongKindsAreRefusedNamingTheType)
{
    CYAMLMap map;
    map.add(CYAMLScalar("s"), std::make_shared<CYAMLScalar>("1"));
    map.add(CYAMLScalar("list"), std::make_shared<CYAMLSequence>());
    StrStrMap texts{{"old", "x"}};
    EXPECT_EQ("Not all values are scalars! Key of nonscalar value: list\n",
              failureOf<IllegalArgumentException>([&] { map.getMap(texts); }));
    StrVector values{"old"};
    EXPECT_EQ("This object is not a scalar. Type = 1\n",
              failureOf<IllegalStateException>([&] { map.getValues(values); }));
    // A refused conversion adds nothing.
    EXPECT_EQ((StrStrMap{{"old", "x"}}), texts);
    EXPECT_EQ(StrVector{"old"}, values);
    EXPECT_EQ("This object is not a map. Type = 0\n",
              failureOf<IllegalStateException>([&] { CYAMLScalar("a").asMap(); }));
    EXPECT_EQ("This object is not a sequence. Type = 2\n", failureOf<IllegalStateException>([&] { map.asSequence(); }));
    EXPECT_EQ("Map item without value!\n  data:\n    key: k\n",
              failureOf<IllegalArgumentException>([&] { map.add(CYAMLScalar("k"), nullptr); }));
}

TEST(CYAMLMapTest, CopiesAreDeep)
{
    auto inner = std::make_shared<CYAMLMap>(YAML_BLOCK_MAPPING_STYLE);
    inner->add(CYAMLScalar("x"), std::make_shared<CYAMLScalar>("1"));
    CYAMLMap outer;
    outer.setAnchor("top");
    outer.add(CYAMLScalar("inner"), inner);

    CYAMLMap copy(outer);
    auto cloned = outer.clone();
    CYAMLMap assigned;
    assigned = outer;
    inner->add(CYAMLScalar("y"), std::make_shared<CYAMLScalar>("2"));

    EXPECT_EQ(1u, copy.getValue("inner")->asMap().size());
    EXPECT_EQ(1u, cloned->asMap().getValue("inner")->asMap().size());
    EXPECT_EQ(1u, assigned.getValue("inner")->asMap().size());
    EXPECT_EQ("top", assigned.getAnchor());
}
