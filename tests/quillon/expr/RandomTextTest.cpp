// Random token strings: every text either evaluates or raises an ExprError, never anything else.
#include "ExprFixture.h"

#include <random>

namespace quillon::expr::test {
namespace {

using RandomTextTest = ExprFixture;

TEST_F(RandomTextTest, EveryTextEvaluatesOrRaisesAnExpressionError)
{
    const std::vector<std::string> vocabulary = {
        "g_point", "g_point_ptr", "g_null", "g_records", "g_array", "g_text", "g_number", "g_fn", "g_s64", "g_u8",
        "g_float", "g_double", "g_color", "GREEN", "add", "make_point", "x", "y", "next", "bits", "wide", "name",
        "ring_t", "struct", "point", "int", "char", "unsigned", "sizeof", "@r0", "sp", "0", "1", "-1", "0x20000000",
        "3.5", "'a'", "\"s\"", "(", ")", "[", "]", ".", "->", "*", "&", "+", "-", "/", "%", "<<", ">>", "<", "==",
        "!", "~", "&&", "||", "?", ":", "=", "+=", "++", "--", ",", "x", "h", "'", "\"", "@", "$",
    };
    std::mt19937 random(20261123);
    std::uniform_int_distribution<std::size_t> pick(0, vocabulary.size() - 1);
    std::uniform_int_distribution<int> length(1, 12);
    int evaluated = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (int n = length(random); n > 0; --n) {
            text += vocabulary[pick(random)] + (random() % 3 == 0 ? "" : " ");
        }
        try {
            evaluate(text);
            ++evaluated;
        } catch (const ExprError&) {
        } catch (const std::exception& other) {
            ADD_FAILURE() << text << ": " << other.what();
        }
    }
    EXPECT_GT(evaluated, 0) << "some of them are expressions";
}

} // namespace
} // namespace quillon::expr::test
