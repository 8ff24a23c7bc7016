#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "CUtil.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

// The description and the data of the IllegalArgumentException that `call` raises.
template <typename F>
std::pair<std::string, std::string> failureOf(F call)
{
    try {
        call();
    } catch (const IllegalArgumentException& e) {
        return {e.getDesc(), e.getData()};
    }
    ADD_FAILURE() << "no IllegalArgumentException";
    return {};
}

} // namespace

TEST(CUtilNumbersToText, DecimalAndHexForms)
{
    EXPECT_EQ("-2147483648", CUtil::i2a(INT_MIN));
    EXPECT_EQ("ffffffff", CUtil::i2h(-1));
    EXPECT_EQ("4294967295", CUtil::i2a(4294967295u));
    EXPECT_EQ("ab", CUtil::i2h(0xABu));
    EXPECT_EQ("-9223372036854775808", CUtil::i2a(LLONG_MIN));
    EXPECT_EQ("18446744073709551615", CUtil::i2a(0xFFFFFFFFFFFFFFFFull));
    EXPECT_EQ("ffffffffffffffff", CUtil::i2h(0xFFFFFFFFFFFFFFFFull));
    EXPECT_EQ("1.5", CUtil::d2a(1.5));
    EXPECT_EQ("0.333333", CUtil::d2a(1.0 / 3));
    EXPECT_EQ("1e+20", CUtil::d2a(1e20));
}

TEST(CUtilTextToNumbers, AcceptedTexts)
{
    EXPECT_EQ(123, CUtil::a2l("123"));
    EXPECT_EQ(LLONG_MAX, CUtil::a2l("9223372036854775807"));
    EXPECT_EQ(255, CUtil::aOrHex2l("0xfF"));
    EXPECT_EQ(0, CUtil::aOrHex2l("0"));
    EXPECT_EQ(-1, CUtil::aOrHex2l("0xffffffffffffffff"));
    EXPECT_EQ(0x23456789abcdef01LL, CUtil::aOrHex2l("0x123456789abcdef01")); // leading digits lost
    EXPECT_EQ(17, CUtil::aOrHex2l("17"));
    EXPECT_DOUBLE_EQ(1.5, CUtil::a2d("1.5"));
    EXPECT_DOUBLE_EQ(-2e-3, CUtil::a2d("-2e-3"));
}

TEST(CUtilTextToNumbers, RefusedTextsNameTheText)
{
    const std::string noLong = "Conversion from string to 'long long' failed, because the string is empty!";
    const std::string notDouble =
        "Conversion from string to double failed, because string does not represent valid double value!";
    enum Conversion { A2L, HEX, A2D };
    const struct {
        Conversion conversion;
        const char* text;
        std::string desc;
        std::string data;
    } rows[] = {
        {A2L, "", noLong, ""},
        {A2L, "-1", "Integer expected: -1", ""},
        {A2L, "12 ", "Integer expected: 12 ", ""},
        {A2L, "9223372036854775808", "Integer out of range: 9223372036854775808", ""},
        {HEX, "", noLong, ""},
        {HEX, "0X10", "Integer expected: 0X10", ""},
        {HEX, "0x", "Not a valid hex number!", "  data:\n    number: 0x\n"},
        {HEX, "0xg", "Invalid character in hex number!", "  data:\n    number: 0xg\n    char: 103\n"},
        {A2D, "", "Conversion from string to double failed, because the string is empty!", ""},
        {A2D, "1.5x", notDouble, "  data:\n    string: 1.5x\n"},
        {A2D, "abc", notDouble, "  data:\n    string: abc\n"},
        {A2D, "1e400", "Integer out of range: 1e400", ""},
    };
    for (const auto& row : rows) {
        auto failure = failureOf([&] {
            switch (row.conversion) {
            case A2L: CUtil::a2l(row.text); break;
            case HEX: CUtil::aOrHex2l(row.text); break;
            case A2D: CUtil::a2d(row.text); break;
            }
        });
        EXPECT_EQ(row.desc, failure.first) << row.text;
        EXPECT_EQ(row.data, failure.second) << row.text;
    }
}

TEST(CUtilText, TrimAndTrimEnd)
{
    EXPECT_EQ("a b", CUtil::trim(" \t\r\na b\n "));
    EXPECT_EQ("", CUtil::trim("   "));
    EXPECT_EQ("   ", CUtil::trimEnd("   "));
    EXPECT_EQ("  x", CUtil::trimEnd("  x \t\r\n"));
    EXPECT_EQ("", CUtil::trimEnd(""));
}

TEST(CUtilText, SplitKeepsEmptyPartsAndAppends)
{
    StrVector parts{"kept"};
    CUtil::split("a,,b", ',', parts);
    EXPECT_EQ((StrVector{"kept", "a", "", "b"}), parts);
    parts.clear();
    CUtil::split("a,", ',', parts);
    EXPECT_EQ((StrVector{"a", ""}), parts);
    parts.clear();
    CUtil::split("", ',', parts);
    EXPECT_EQ((StrVector{""}), parts);
}

TEST(CUtilText, SubstrToDelimReportsTheDelimiter)
{
    size_t pos = 0;
    EXPECT_EQ("b", CUtil::getSubstrToDelim("a:b:c", 2, ':', pos));
    EXPECT_EQ(3u, pos);
    EXPECT_EQ("c", CUtil::getSubstrToDelim("a:b:c", 4, ':', pos));
    EXPECT_EQ(std::string::npos, pos);
    EXPECT_EQ("", CUtil::getSubstrToDelim("a:b", 9, ':', pos));
    EXPECT_EQ(std::string::npos, pos);
}

TEST(CUtilText, ReplaceCharDoesNotReplaceInsertedText)
{
    EXPECT_EQ("a/b/c", CUtil::replaceChar("a\\b\\c", '\\', '/'));
    EXPECT_EQ("a\\\\b", CUtil::replaceChar("a\\b", '\\', std::string("\\\\")));
    EXPECT_EQ("xyxy", CUtil::replaceChar("yy", 'y', std::string("xy")));
    EXPECT_EQ("ab", CUtil::replaceChar("a-b", '-', std::string("")));
}

TEST(CUtilSubstVars, ReplacesInKeyOrderThenDefault)
{
    EXPECT_EQ("1?", CUtil::substVars("${a}${b}", {{"a", "1"}, {"__default", "?"}}));
    // A value may bring references to keys later in key order.
    EXPECT_EQ("x=2", CUtil::substVars("${a}", {{"a", "x=${b}"}, {"b", "2"}}));
    EXPECT_EQ("no refs", CUtil::substVars("no refs", {}));
    EXPECT_EQ("__default", CUtil::getDefaultVarName());
}

TEST(CUtilSubstVars, UnknownAndUnterminatedReferences)
{
    auto unknown = failureOf([] { CUtil::substVars("x${a}", {{"b", "1"}}); });
    EXPECT_EQ("Unknown variable(s) in string specified!", unknown.first);
    EXPECT_EQ("  data:\n    string: x${a}\n", unknown.second);

    auto open = failureOf([] { CUtil::substVars("${a", {{"__default", "?"}}); });
    EXPECT_EQ("Variable in string without ending '}'!", open.first);
    EXPECT_EQ("  data:\n    string: ${a\n    startPos: 0\n", open.second);
}

TEST(CUtilSubstVars, SelfReferencesAreExpandedOnce)
{
    // The self reference is left in place, then resolved once by the default.
    EXPECT_EQ("<${a}>", CUtil::substVars("${a}", {{"a", "<${a}>"}, {"__default", "${a}"}}));
    EXPECT_EQ("${x}", CUtil::substVars("${y}", {{"__default", "${x}"}}));
}
