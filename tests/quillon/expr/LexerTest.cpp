// Tokens of expression texts: kinds, values, positions and the errors of malformed input.
#include "expr/ExprError.h"
#include "expr/Lexer.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillon::expr::test {
namespace {

TEST(LexerTest, SplitsOperatorsLongestFirstWithPositions)
{
    const std::vector<Token> tokens = Lexer::tokenize("a->b<<=c>>d&&!e");
    const std::vector<std::string> texts = {"a", "->", "b", "<<=", "c", ">>", "d", "&&", "!", "e", ""};
    const std::vector<std::size_t> positions = {0, 1, 3, 4, 7, 8, 10, 11, 13, 14, 15};
    ASSERT_EQ(tokens.size(), texts.size());
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        EXPECT_EQ(tokens[i].text, texts[i]) << i;
        EXPECT_EQ(tokens[i].position, positions[i]) << i;
    }
    EXPECT_EQ(tokens.back().kind, Token::Kind::End);
}

TEST(LexerTest, IntegerConstantsInEachBaseWithSuffixes)
{
    struct Case {
        const char* text;
        std::uint64_t value;
        bool isUnsigned;
        unsigned longs;
        bool decimal;
    };
    const std::vector<Case> cases = {
        {"42", 42, false, 0, true},          {"0x2A", 42, false, 0, false},
        {"052", 42, false, 0, false},        {"0b101010", 42, false, 0, false},
        {"42u", 42, true, 0, true},          {"42UL", 42, true, 1, true},
        {"42ll", 42, false, 2, true},        {"0xffffffffffffffff", ~0ull, false, 0, false},
        {"0", 0, false, 0, true},
    };
    for (const Case& c : cases) {
        const Token token = Lexer::tokenize(c.text).front();
        EXPECT_EQ(token.kind, Token::Kind::Integer) << c.text;
        EXPECT_EQ(token.integer, c.value) << c.text;
        EXPECT_EQ(token.isUnsigned, c.isUnsigned) << c.text;
        EXPECT_EQ(token.longs, c.longs) << c.text;
        EXPECT_EQ(token.decimal, c.decimal) << c.text;
    }
}

TEST(LexerTest, FloatingConstants)
{
    EXPECT_DOUBLE_EQ(Lexer::tokenize("1.25").front().floating, 1.25);
    EXPECT_DOUBLE_EQ(Lexer::tokenize(".5").front().floating, 0.5);
    EXPECT_DOUBLE_EQ(Lexer::tokenize("2e-3").front().floating, 0.002);
    EXPECT_DOUBLE_EQ(Lexer::tokenize("1E+2").front().floating, 100);
    const Token single = Lexer::tokenize("1.5f").front();
    EXPECT_EQ(single.kind, Token::Kind::Floating);
    EXPECT_TRUE(single.isFloat);
}

TEST(LexerTest, CharacterConstantsEscapedOrAsTheyStand)
{
    struct Case {
        const char* text;
        std::uint64_t value;
    };
    const std::vector<Case> cases = {
        {"'a'", 'a'},   {"'\\n'", '\n'}, {"'\\0'", 0},      {"'\\x41'", 0x41}, {"'\\101'", 0101},
        {"'''", '\''},  {"'\\''", '\''}, {"'\\'", '\\'},    {"'\\\\'", '\\'},  {"' '", ' '},
        {"'\"'", '"'},
    };
    for (const Case& c : cases) {
        const std::vector<Token> tokens = Lexer::tokenize(c.text);
        ASSERT_EQ(tokens.size(), 2u) << c.text;
        EXPECT_EQ(tokens[0].kind, Token::Kind::Character) << c.text;
        EXPECT_EQ(tokens[0].integer, c.value) << c.text;
    }
}

TEST(LexerTest, StringsRegistersAndNames)
{
    const std::vector<Token> tokens = Lexer::tokenize("\"a\\tb\" @R0 _x1");
    EXPECT_EQ(tokens[0].kind, Token::Kind::String);
    EXPECT_EQ(tokens[0].text, "a\tb");
    EXPECT_EQ(tokens[1].kind, Token::Kind::Register);
    EXPECT_EQ(tokens[1].text, "R0");
    EXPECT_EQ(tokens[2].kind, Token::Kind::Identifier);
    EXPECT_EQ(tokens[2].text, "_x1");
    EXPECT_EQ(tokens[2].position, 11u);
}

TEST(LexerTest, MalformedInputNamesItsColumn)
{
    struct Case {
        const char* text;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"1 # 2", "unexpected character '#' (column 3)"},
        {"a $", "unexpected character '$' (column 3)"},
        {"0x", "malformed number '0x' (column 1)"},
        {"12abc", "malformed number '12abc' (column 1)"},
        {"09", "malformed number '09' (column 1)"},
        {"1.5q", "malformed number '1.5q' (column 1)"},
        {"18446744073709551616", "integer constant '18446744073709551616' is too large (column 1)"},
        {"x + 'ab'", "unterminated character constant (column 5)"},
        {"\"abc", "unterminated string (column 1)"},
        {"'\\q'", "unknown escape sequence '\\q' (column 1)"},
        {"@ 1", "register name expected after '@' (column 1)"},
    };
    for (const Case& c : cases) {
        try {
            Lexer::tokenize(c.text);
            ADD_FAILURE() << c.text << " gave no error";
        } catch (const ExprError& error) {
            EXPECT_EQ(std::string(error.what()), c.message) << c.text;
        }
    }
}

} // namespace
} // namespace quillon::expr::test
