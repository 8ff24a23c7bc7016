// Assignments: the Modify texts of the test service and the debugger, compound assignment,
// increments, bit fields, scalar records.
#include "ExprFixture.h"

namespace quillon::expr::test {
namespace {

using ModifyTest = ExprFixture;

TEST_F(ModifyTest, AssignsValueTextsConvertedToTheTargetType)
{
    EXPECT_EQ(modify("g_s32", "3").text, "3");
    EXPECT_EQ(text("g_s32"), "3");
    EXPECT_EQ(modify("g_u8", "300").text, "44 ','"); // 300 modulo 256
    EXPECT_EQ(modify("g_s16", "-1").text, "-1");
    EXPECT_EQ(text("g_u16"), "60000") << "the neighbour keeps its value";
    EXPECT_EQ(modify("g_float", "2.75").text, "2.75");
    EXPECT_EQ(modify("g_double", "1 / 4.0").text, "0.25");
    EXPECT_EQ(modify("g_s64", "-(1LL << 40)").text, "-1099511627776");
    EXPECT_EQ(modify("g_color", "RED").text, "RED");
    EXPECT_EQ(modify("g_bool", "0").text, "0");
    EXPECT_EQ(modify("g_s32", "2.9").text, "2");
    std::uint32_t raw = 0;
    target->readMemory(address("g_s32"), &raw, 4);
    EXPECT_EQ(raw, 2u);
}

TEST_F(ModifyTest, AcceptsElementsMembersAndExpressionsOverCurrentValues)
{
    EXPECT_EQ(modify("g_array[2]", "g_array[2] + 1").text, "31");
    EXPECT_EQ(modify("g_point_ptr->y", "g_point.x * 10").text, "30");
    EXPECT_EQ(text("g_point"), "{x = 3, y = 30}");
    EXPECT_EQ(modify("g_records[1].corners[0]", "g_point").text, "{x = 3, y = 30}");
    EXPECT_EQ(modify("g_int_ptr", "&g_array[3]").text, text("&g_array[3]"));
    EXPECT_EQ(text("*g_int_ptr"), "40");
}

TEST_F(ModifyTest, CharacterConstantsAsTheyArriveForStrings)
{
    // A quoted text arrives as one write per element, the character unescaped between quotes.
    EXPECT_EQ(modify("g_text[0]", "'a'").text, "97 'a'");
    EXPECT_EQ(modify("g_text[1]", "'''").text, "39 '\\''");
    EXPECT_EQ(modify("g_text[2]", "'\\'").text, "92 '\\\\'");
    EXPECT_EQ(modify("g_text[3]", "'\\n'").text, "10 '\\n'");
    EXPECT_EQ(modify("g_text[4]", "'\\''").text, "39 '\\''");
    EXPECT_EQ(modify("g_text[5]", "0").text, "0 '\\000'");
    EXPECT_EQ(text("g_text"), "\"a'\\\\\\n'\"");
    EXPECT_EQ(modify("g_text", "\"xyz\"").text, "\"xyz\"");
}

TEST_F(ModifyTest, BitFieldsKeepTheirNeighbours)
{
    EXPECT_EQ(modify("g_records[0].bits.level", "2").text, "2");
    EXPECT_EQ(modify("g_records[0].bits.delta", "-8").text, "-8");
    EXPECT_EQ(modify("g_records[0].bits.wide", "0xFFFFF + 2").text, "1"); // 20 bits wrap
    EXPECT_EQ(text("g_records[0].bits"), "{ready = 1, level = 2, delta = -8, wide = 1, tail = 7 '\\a'}");
}

TEST_F(ModifyTest, CompoundAssignmentAndIncrements)
{
    EXPECT_EQ(text("g_s32 += 5"), "-99995");
    EXPECT_EQ(text("g_s32 -= 5"), "-100000");
    EXPECT_EQ(text("g_u8 <<= 1"), "144 '\\220'"); // 400 modulo 256
    EXPECT_EQ(text("g_array[0] *= 3"), "30");
    EXPECT_EQ(text("g_array[0] /= 4"), "7");
    EXPECT_EQ(text("g_array[0] %= 4"), "3");
    EXPECT_EQ(text("g_array[0] |= 8"), "11");
    EXPECT_EQ(text("g_array[0] &= 6"), "2");
    EXPECT_EQ(text("g_array[0] ^= 7"), "5");
    EXPECT_EQ(text("g_array[0] >>= 1"), "2");
    EXPECT_EQ(text("g_counter++"), "0");
    EXPECT_EQ(text("g_counter"), "1");
    EXPECT_EQ(text("++g_counter"), "2");
    EXPECT_EQ(text("--g_counter"), "1");
    EXPECT_EQ(text("g_int_ptr++ == &g_array[1]"), "1");
    EXPECT_EQ(text("*g_int_ptr"), "30");
    EXPECT_EQ(text("g_float += 1"), "2.5");
    EXPECT_EQ(text("g_s8 = g_u8 = 255"), "-1 '\\377'");
}

TEST_F(ModifyTest, RegistersAreLvalues)
{
    EXPECT_EQ(text("@r5 = 0x1234"), "4660");
    EXPECT_EQ(target->readRegister(target::Register::R5), 0x1234u);
    EXPECT_EQ(text("r6 = r5 + 1"), "4661");
    EXPECT_EQ(target->readRegister(target::Register::R6), 0x1235u);
}

TEST_F(ModifyTest, ScalarRecordsAreConvertedToTheLvalue)
{
    const ScopeChain scopes = ScopeChain::forStop(firmware(), *target);
    ExpressionEvaluator evaluator(firmware(), *target, scopes);
    EXPECT_EQ(evaluator.modify("g_s16", Scalar{Scalar::Code::Signed, 32, 0xFFFFFFF6}).text, "-10");
    EXPECT_EQ(evaluator.modify("g_double", Scalar{Scalar::Code::Float, 32, 0x40200000}).text, "2.5");
    EXPECT_EQ(evaluator.modify("g_u32", Scalar{Scalar::Code::Unsigned, 8, 0x1FF}).text, "255");
    EXPECT_EQ(evaluator.modify("g_s32", Scalar{Scalar::Code::Float, 64, 0xC002000000000000ull}).text, "-2");
    EXPECT_THROW(evaluator.modify("g_s32", Scalar{Scalar::Code::Float, 16, 0}), ExprError);
    EXPECT_THROW(evaluator.modify("g_s32", Scalar{Scalar::Code::Compound, 0, 0}), ExprError);
}

TEST_F(ModifyTest, RefusesWhatCannotBeAssigned)
{
    const auto failure = [&](const std::string& lvalue, const std::string& value) {
        try {
            modify(lvalue, value);
        } catch (const ExprError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(failure("3", "4"), "not an lvalue (column 1)");
    EXPECT_EQ(failure("g_s32 + 1", "4"), "not an lvalue (column 7)");
    EXPECT_EQ(failure("g_point", "1"), "cannot convert 'int' to 'struct point' (column 1)");
    EXPECT_EQ(failure("g_float", "g_int_ptr"), "cannot convert 'int *' to 'float' (column 1)");
    EXPECT_EQ(failure("add", "1"), "cannot assign to a function (column 1)");
    EXPECT_EQ(failure("g_s32", "nosuch"), "no symbol 'nosuch' in the current scope (column 1)");
    EXPECT_EQ(failure("*(int *)0xF0000000", "1"), "memory not writable at 0xf0000000 (column 1)");
    EXPECT_EQ(failure("(int)g_s32", "1"), "not an lvalue (column 1)");
}

} // namespace
} // namespace quillon::expr::test
