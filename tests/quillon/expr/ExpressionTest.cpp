// Expressions over the globals of the expression firmware, stopped at main: values by C's rules.
#include "ExprFixture.h"

#include <vector>

namespace quillon::expr::test {
namespace {

struct Case {
    const char* expression;
    const char* text;
};

class ExpressionTest : public ExprFixture {
protected:
    void expectAll(const std::vector<Case>& cases)
    {
        for (const Case& c : cases) {
            try {
                EXPECT_EQ(text(c.expression), c.text) << c.expression;
            } catch (const ExprError& failure) {
                ADD_FAILURE() << c.expression << ": " << failure.what();
            }
        }
    }
};

TEST_F(ExpressionTest, IntegersOfEachWidthPrintInDecimalAndCharsWithTheirCharacter)
{
    expectAll({
        {"g_s8", "-5 '\\373'"},
        {"g_u8", "200 '\\310'"},
        {"g_s16", "-1234"},
        {"g_u16", "60000"},
        {"g_s32", "-100000"},
        {"g_u32", "4000000000"},
        {"g_s64", "-5000000000"},
        {"g_u64", "18000000000000000000"},
        {"g_char", "65 'A'"},
        {"g_bool", "1"},
        {"g_color", "BLUE"},
        {"g_mode", "MODE_OFF"},
        {"GREEN", "GREEN"},
        {"GREEN + 0", "5"},
        {"BLUE - RED", "6"},
    });
}

TEST_F(ExpressionTest, PromotionsAndUsualArithmeticConversions)
{
    expectAll({
        {"g_u8 + 1", "201"},
        {"g_s8 * g_u8", "-1000"},
        {"g_u16 * g_u16", "-694967296"}, // int arithmetic after promotion wraps on the target
        {"g_u32 + 1", "4000000001"},
        {"g_s32 < g_u32", "0"},          // -100000 becomes a large unsigned
        {"-1 < 0u", "0"},
        {"-1 < 0", "1"},
        {"-1 < (long long)0u", "1"},
        {"g_s64 / 1000", "-5000000"},
        {"g_u64 % 7", "4"},
        {"g_s32 + g_u64", "17999999999999900000"},
        {"-g_u8", "-200"},
        {"~0", "-1"},
        {"~0u", "4294967295"},
        {"0x7fffffff + 1", "-2147483648"},
        {"0xffffffff", "4294967295"},
        {"2147483648", "2147483648"},
        {"-2147483648 < 0", "1"},
    });
}

TEST_F(ExpressionTest, OperatorsFollowCPrecedence)
{
    expectAll({
        {"1 + 2 * 3", "7"},
        {"(1 + 2) * 3", "9"},
        {"10 - 4 - 3", "3"},
        {"100 / 10 / 5", "2"},
        {"1 << 2 + 1", "8"},
        {"1 + 2 == 3", "1"},
        {"6 & 3 == 3", "0"},
        {"1 | 2 ^ 3 & 4", "3"},
        {"1 || 0 && 0", "1"},
        {"2 < 3 == 1", "1"},
        {"-2 * -3", "6"},
        {"!0 + !5", "1"},
        {"1 ? 2 : 0 ? 3 : 4", "2"},
        {"1 ? g_u8 : 0", "200"},          // the common type of both operands: int
        {"1 ? 2 : 0.5", "2"},
        {"0 ? 2 : 0.5", "0.5"},
        {"1 ? -1 : 0u", "4294967295"},    // unsigned int
        {"1 ? g_s8 : g_s64", "-5"},
        {"1 ? g_records[0].bits.delta : g_float", "-3"},
        {"sizeof(1 ? g_s8 : g_s64)", "8"}, // long long
        {"0 ? 2 : 0 ? 3 : 4", "4"},
        {"-7 / 2", "-3"},
        {"-7 % 2", "-1"},
        {"7u / 2", "3"},
        {"1 << 31", "-2147483648"},
        {"-16 >> 2", "-4"},
        {"0x80000000 >> 31", "1"},
        {"0b101 + 010", "13"},
        {"3 > 2 && 2 > 1", "1"},
        {"0 || 0", "0"},
    });
}

TEST_F(ExpressionTest, LogicalOperatorsShortCircuit)
{
    expectAll({
        {"0 && 1 / 0", "0"},
        {"1 || *(int *)0xF0000000", "1"},
        {"1 ? 5 : 1 / 0", "5"},
    });
}

TEST_F(ExpressionTest, ArraysPointersAndTheirArithmetic)
{
    expectAll({
        {"g_array[2]", "30"},
        {"2[g_array]", "30"},
        {"*(g_array + 3)", "40"},
        {"*g_int_ptr", "20"},
        {"g_int_ptr[1]", "30"},
        {"g_int_ptr - g_array", "1"},
        {"&g_array[4] - &g_array[1]", "3"},
        {"(char *)&g_array[4] - (char *)g_array", "16"},
        {"(g_point_ptr + 1) - g_point_ptr", "1"},
        {"(char *)(g_point_ptr + 1) - (char *)g_point_ptr", "8"},
        {"g_matrix[1][2]", "6"},
        {"*g_matrix[1]", "4"},
        {"g_array", "{10, 20, 30, 40, 50}"},
        {"g_matrix", "{{1, 2, 3}, {4, 5, 6}}"},
        {"g_null", "0x0"},
        {"!g_null", "1"},
        {"&g_point == g_point_ptr", "1"},
        {"g_int_ptr > g_array", "1"},
        {"g_text", "\"hello\""},
        {"g_text[1]", "101 'e'"},
        {"\"abc\"[1]", "98 'b'"},
        {"'a'", "97"},
        {"'\\n'", "10"},
    });
    EXPECT_EQ(text("&g_array[1]"), text("g_int_ptr"));
    EXPECT_EQ(text("(unsigned)&g_array[1] - (unsigned)&g_array[0]"), "4");
}

TEST_F(ExpressionTest, StructUnionAndBitFieldMembers)
{
    expectAll({
        {"g_point.x", "3"},
        {"g_point_ptr->y", "-4"},
        {"(*g_point_ptr).x + g_point.y", "-1"},
        {"g_point", "{x = 3, y = -4}"},
        {"g_records[0].corners[1].y", "4"},
        {"g_records[0].next->name", "\"second\""},
        {"g_records[0].next->next", "0x0"},
        {"g_records[0].values[0]", "-1"},
        {"g_records[1].values[2] * 2", "600"},
        {"g_records[0].bits.ready", "1"},
        {"g_records[0].bits.level", "5"},
        {"g_records[0].bits.delta", "-3"},
        {"g_records[0].bits.wide", "703710"},
        {"g_records[0].bits.tail", "7 '\\a'"},
        {"g_records[1].bits.delta", "7"},
        {"g_records[0].bits.delta * 2", "-6"},
        {"g_records[0].bits", "{ready = 1, level = 5, delta = -3, wide = 703710, tail = 7 '\\a'}"},
        {"g_records[0].tint", "GREEN"},
        {"g_records[0].tint == GREEN", "1"},
        {"g_number.real", "1.5"},
        {"g_number", "{word = 1069547520, bytes = \"\\000\\000\\300?\", real = 1.5}"},
        {"g_ring.buffer", "\"\\001\\002\\003\""},
        {"g_number.bytes[3]", "63 '?'"},
        {"g_number.word == 0x3FC00000", "1"},
        {"g_ring.head", "3 '\\003'"},
        {"g_ring.buffer[2] + g_ring.head", "6"},
    });
    const std::string label = text("g_records[0].label");
    EXPECT_EQ(label.rfind("0x", 0), 0u) << label;
    EXPECT_EQ(label.substr(label.size() - 6), " \"one\"") << label;
    EXPECT_EQ(text("g_message").substr(text("g_message").find(' ')), " \"hi there\"");
}

TEST_F(ExpressionTest, CastsToBaseAndDebugInfoTypes)
{
    expectAll({
        {"(char)321", "65 'A'"},
        {"(unsigned char)-1", "255 '\\377'"},
        {"(uint8_t)0x1ff", "255 '\\377'"},
        {"(short)70000", "4464"},
        {"(int)2.9", "2"},
        {"(int)-2.9", "-2"},
        {"(unsigned)g_s8", "4294967291"},
        {"(long long)g_s32 * 100000", "-10000000000"},
        {"(float)1 / 3", "0.333333343"},
        {"(double)1 / 4", "0.25"},
        {"(_Bool)7", "1"},
        {"(enum color)5", "GREEN"},
        {"(enum color)4", "4"},
        {"((struct point *)&g_records[0].corners[1])->x", "3"},
        {"((ring_t *)&g_ring)->buffer[2]", "3 '\\003'"},
        {"((const uint8_t *)g_text)[4]", "111 'o'"},
        {"*(int *)&g_number", "1069547520"},
        {"(struct point *)0", "0x0"},
    });
    EXPECT_EQ(text("((struct point *)" + std::to_string(address("g_point")) + ")->y"), "-4");
}

TEST_F(ExpressionTest, SizeofOfTypesAndExpressionsReadsNoMemory)
{
    expectAll({
        {"sizeof(int)", "4"},
        {"sizeof(long)", "4"},
        {"sizeof(long long)", "8"},
        {"sizeof(double)", "8"},
        {"sizeof(struct point *)", "4"},
        {"sizeof(char[16])", "16"},
        {"sizeof(enum color)", "1"}, // the ARM EABI's short enums
        {"sizeof(ring_t)", "18"},
        {"sizeof(struct flags)", "8"},
        {"sizeof(struct record)", "52"},
        {"sizeof g_matrix", "24"},
        {"sizeof g_matrix[0]", "12"},
        {"sizeof g_text", "16"},
        {"sizeof g_point.x", "4"},
        {"sizeof \"abc\"", "4"},
        {"sizeof *(struct record *)0xF0000000", "52"},
        {"sizeof(g_s8 + g_s8)", "4"},
        {"sizeof(g_s64 + 1)", "8"},
        {"sizeof(g_counter = 5)", "4"},
    });
    EXPECT_EQ(text("g_counter"), "0") << "sizeof must not assign";
}

TEST_F(ExpressionTest, FloatsAndDoubles)
{
    expectAll({
        {"g_float", "1.5"},
        {"g_double", "-2.25"},
        {"g_float * 2", "3"},
        {"g_double + g_float", "-0.75"},
        {"g_float > 1", "1"},
        {"(int)(g_double * 4)", "-9"},
        {"3.5f", "3.5"},
        {"1e3", "1000"},
        {"0.1", "0.10000000000000001"},
        {"0.1f", "0.100000001"},
        {"1 / 2.0", "0.5"},
        {"1.0 / 0", "inf"},
        {"-g_float", "-1.5"},
    });
}

TEST_F(ExpressionTest, FunctionsAndFunctionPointers)
{
    const std::uint32_t add = firmware().findFunction("add")->entry;
    char hex[32];
    std::snprintf(hex, sizeof hex, "0x%x <add>", add | 1u);
    EXPECT_EQ(text("g_fn"), hex);
    EXPECT_EQ(text("add"), std::string("{int (int, int)} ") + hex);
    EXPECT_EQ(text("g_fn == add"), "1");
    EXPECT_EQ(text("&add == add"), "1");
    EXPECT_EQ(text("sizeof(binary_fn)"), "4");
    EXPECT_EQ(text("s_hidden"), "77");
}

TEST_F(ExpressionTest, DisplayFormatsChangeTheText)
{
    expectAll({
        {"255,x", "0xff"},
        {"255,h", "0xff"},
        {"-1,x", "0xffffffff"},
        {"g_s8,x", "0xfb"},
        {"g_s8,d", "-5"},
        {"g_u8,d", "-56"},
        {"g_u8,u", "200"},
        {"g_u32,d", "-294967296"},
        {"g_s32,u", "4294867296"},
        {"10,o", "012"},
        {"0,o", "0"},
        {"5,b", "0b101"},
        {"65,c", "65 'A'"},
        {"g_color,d", "6"},
        {"g_point,x", "{x = 0x3, y = 0xfffffffc}"},
        {"g_array,x", "{0xa, 0x14, 0x1e, 0x28, 0x32}"},
        {"g_s64,x", "0xfffffffed5fa0e00"},
        {"g_s32 == -100000,x", "0x1"},
    });
}

TEST_F(ExpressionTest, ResultsCarryScalarAndType)
{
    struct ScalarCase {
        const char* expression;
        Scalar::Code code;
        unsigned bitSize;
        std::uint64_t bits;
        const char* typeName;
    };
    const std::vector<ScalarCase> cases = {
        {"g_s8", Scalar::Code::Signed, 8, 0xFB, "int8_t"},
        {"g_u16", Scalar::Code::Unsigned, 16, 60000, "uint16_t"},
        {"g_s32", Scalar::Code::Signed, 32, 0xFFFE7960, "int32_t"},
        {"g_s64", Scalar::Code::Signed, 64, 0xFFFFFFFED5FA0E00ull, "int64_t"},
        {"g_float", Scalar::Code::Float, 32, 0x3FC00000, "float"},
        {"g_double", Scalar::Code::Float, 64, 0xC002000000000000ull, "double"},
        {"1 < 2", Scalar::Code::Signed, 32, 1, "int"},
        {"sizeof(int)", Scalar::Code::Unsigned, 32, 4, "unsigned int"},
        {"g_null", Scalar::Code::Address, 32, 0, "struct point *"},
        {"g_point", Scalar::Code::Compound, 0, 0, "struct point"},
        {"g_color", Scalar::Code::Unsigned, 8, 6, "enum color"},
    };
    for (const ScalarCase& c : cases) {
        const EvaluationResult result = evaluate(c.expression);
        EXPECT_EQ(result.scalar.code, c.code) << c.expression;
        EXPECT_EQ(result.scalar.bitSize, c.bitSize) << c.expression;
        EXPECT_EQ(result.scalar.bits, c.bits) << c.expression;
        EXPECT_EQ(result.typeName, c.typeName) << c.expression;
    }
    const EvaluationResult pointer = evaluate("g_point_ptr");
    EXPECT_EQ(pointer.scalar.bits, address("g_point"));
    EXPECT_EQ(evaluate("g_records").byteSize, 104u);
    EXPECT_EQ(evaluate("g_records").kind, debuginfo::Type::Kind::Array);
    EXPECT_EQ(evaluate("add").scalar.bits, firmware().findFunction("add")->entry | 1u);
    EXPECT_EQ(evaluate("add").scalar.code, Scalar::Code::Address);
}

TEST_F(ExpressionTest, ErrorsNameTheProblemAndItsColumn)
{
    const std::vector<Case> cases = {
        {"nosuch", "no symbol 'nosuch' in the current scope (column 1)"},
        {"1 + nosuch", "no symbol 'nosuch' in the current scope (column 5)"},
        {"AB", "no symbol 'AB' in the current scope (column 1)"},
        {"g_s32->x", "'->' on a non-pointer (column 6)"},
        {"g_point_ptr->z", "no member 'z' in 'struct point' (column 12)"},
        {"g_point.z", "no member 'z' in 'struct point' (column 8)"},
        {"g_s32.x", "'.' on a non-struct ('int32_t') (column 6)"},
        {"1 / 0", "division by zero (column 3)"},
        {"g_s32 % (g_u8 - 200)", "division by zero (column 7)"},
        {"(struct nosuch *)0", "unknown type 'struct nosuch' (column 2)"},
        {"sizeof(struct nosuch)", "unknown type 'struct nosuch' (column 8)"},
        {"(struct point)1", "cannot convert 'int' to 'struct point' (column 1)"},
        {"3 = 4", "not an lvalue (column 1)"},
        {"g_s32 + 1 = 4", "not an lvalue (column 7)"},
        {"*(int *)0xF0000000", "memory not readable at 0xf0000000 (column 1)"},
        {"g_point + 1", "invalid operands to '+' ('struct point' and 'int') (column 9)"},
        {"g_int_ptr + g_int_ptr", "invalid operands to '+' ('int *' and 'int *') (column 11)"},
        {"g_array[", "unexpected end of expression (column 9)"},
        {"1 +", "unexpected end of expression (column 4)"},
        {"(1", "')' expected at the end (column 3)"},
        {"1 2", "unexpected '2' (column 3)"},
        {"1 $ 2", "unexpected character '$' (column 3)"},
        {"g_u8,q", "unknown display format 'q'"},
        {"&3", "'&' needs an lvalue (column 1)"},
        {"*g_s32", "'*' on a non-pointer (column 1)"},
        {"g_s32[1]", "'[]' on a non-array ('int32_t') (column 6)"},
        {"g_array[0.5]", "array index is not an integer (column 9)"},
        {"0x", "malformed number '0x' (column 1)"},
        {"99999999999999999999", "integer constant '99999999999999999999' is too large (column 1)"},
        {"'ab'", "unterminated character constant (column 1)"},
        {"\"abc", "unterminated string (column 1)"},
        {"int", "unexpected type name 'int' (column 1)"},
        {"1 + struct", "unexpected type name 'struct' (column 5)"},
        {"ring_t", "no symbol 'ring_t' in the current scope (column 1)"},
        {"g_s32(1)", "'int32_t' is not a function (column 6)"},
        {"", "empty expression (column 1)"},
        {"g_point ? 1 : 2", "'struct point' is not a scalar (column 1)"},
        {"@r99", "no register 'r99' (column 1)"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(error(c.expression), c.text) << c.expression;
    }
}

TEST_F(ExpressionTest, DeepNestingIsAnErrorNotAStackOverflow)
{
    EXPECT_EQ(text(std::string(100, '(') + "1" + std::string(100, ')')), "1");
    std::string negations;
    for (int i = 0; i < 100; ++i) {
        negations += "- ";
    }
    EXPECT_EQ(text(negations + "1"), "1");
    for (const std::string& deep : {std::string(600, '(') + "1" + std::string(600, ')'), std::string(600, '!') + "1"}) {
        const std::string message = error(deep);
        EXPECT_EQ(message.rfind("expression nested too deeply (column ", 0), 0u) << message;
    }
}

TEST_F(ExpressionTest, RegistersByPlainAndAtName)
{
    const std::uint32_t sp = target->readRegister(target::Register::SP);
    EXPECT_EQ(text("@sp"), std::to_string(sp));
    EXPECT_EQ(text("@SP"), std::to_string(sp));
    EXPECT_EQ(text("sp"), std::to_string(sp));
    EXPECT_EQ(text("@pc == " + std::to_string(target->pc())), "1");
    EXPECT_EQ(text("R0 + 0"), std::to_string(target->readRegister(target::Register::R0)));
}

} // namespace
} // namespace quillon::expr::test
