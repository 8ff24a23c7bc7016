// Scope chains: named objects the services add in front of the debug information's names.
#include "ExprFixture.h"

#include "expr/NamedObjectScope.h"

namespace quillon::expr::test {
namespace {

class ScopeTest : public ExprFixture {
protected:
    void SetUp() override
    {
        ExprFixture::SetUp();
        scopes = std::make_unique<ScopeChain>(ScopeChain::forStop(firmware(), *target));
        evaluator = std::make_unique<ExpressionEvaluator>(firmware(), *target, *scopes, callOptions);
        objects = std::make_shared<NamedObjectScope>();
        scopes->prepend(objects);
    }

    std::unique_ptr<ScopeChain> scopes;
    std::unique_ptr<ExpressionEvaluator> evaluator;
    std::shared_ptr<NamedObjectScope> objects;
};

TEST_F(ScopeTest, NamedObjectsOfTypeTextsAreTargetMemory)
{
    objects->add("buf", evaluator->parseType("char[16]"), 0x2000F000);
    objects->add("where", evaluator->parseType("struct point"), 0x2000F010);
    objects->add("ring", evaluator->parseType("ring_t *"), 0x2000F018);
    EXPECT_EQ(evaluator->modify("buf[0]", "'o'").text, "111 'o'");
    EXPECT_EQ(evaluator->modify("buf[1]", "'k'").text, "107 'k'");
    EXPECT_EQ(evaluator->modify("buf[2]", "0").text, "0 '\\000'");
    EXPECT_EQ(evaluator->evaluate("buf").text, "\"ok\"");
    EXPECT_EQ(evaluator->evaluate("length(buf)").text, "2");
    EXPECT_EQ(evaluator->evaluate("(unsigned)&buf[1]").text, std::to_string(0x2000F001));

    evaluator->modify("where.x", "g_point.y * 2");
    evaluator->modify("where.y", "5");
    EXPECT_EQ(evaluator->evaluate("sum_point(where)").text, "-795");
    EXPECT_EQ(evaluator->evaluate("where").text, "{x = -8, y = 5}");

    evaluator->modify("ring", "&g_ring");
    EXPECT_EQ(evaluator->evaluate("ring->head - ring->tail").text, "3");
    EXPECT_EQ(evaluator->evaluate("ring_count(ring)").text, "3 '\\003'");
    std::uint32_t stored = 0;
    target->readMemory(0x2000F018, &stored, 4);
    EXPECT_EQ(stored, address("g_ring"));
}

TEST_F(ScopeTest, NamedObjectsInRegisters)
{
    // As a stub's parameters are at its entry: the first ones in r0 and r1.
    target->writeRegister(target::Register::R0, 0xFFFFFFFE);
    target->writeRegister(target::Register::R1, address("g_point"));
    objects->add("delta", Value::inRegister(evaluator->parseType("int"), target::Register::R0));
    objects->add("where", Value::inRegister(evaluator->parseType("struct point *"), target::Register::R1));
    EXPECT_EQ(evaluator->evaluate("delta * where->y").text, "8");
    EXPECT_EQ(evaluator->modify("delta", "delta - 1").text, "-3");
    EXPECT_EQ(target->readRegister(target::Register::R0), 0xFFFFFFFDu);
}

TEST_F(ScopeTest, NamedObjectsHideGlobalsUntilRemoved)
{
    objects->add("g_s32", evaluator->parseType("short"), 0x2000F000);
    evaluator->modify("g_s32", "-2");
    EXPECT_EQ(evaluator->evaluate("g_s32").text, "-2");
    EXPECT_EQ(evaluator->evaluate("sizeof g_s32").text, "2");
    EXPECT_TRUE(objects->remove("g_s32"));
    EXPECT_FALSE(objects->remove("g_s32"));
    EXPECT_EQ(evaluator->evaluate("g_s32").text, "-100000");
}

TEST_F(ScopeTest, ObjectsTooLargeToReadAreErrors)
{
    objects->add("huge", evaluator->parseType("char[100000000]"), 0x20000000);
    EXPECT_EQ(evaluator->evaluate("sizeof huge").text, "100000000");
    EXPECT_EQ(evaluator->evaluate("huge[3] == g_array[0]").text, "0");
    EXPECT_THROW(
        {
            try {
                evaluator->evaluate("huge");
            } catch (const ExprError& error) {
                EXPECT_STREQ(error.what(), "'char[100000000]' is too large to read (100000000 bytes) (column 1)");
                throw;
            }
        },
        ExprError);
}

TEST_F(ScopeTest, AnEvaluatorServesNewScopesAfterTheTargetMoved)
{
    runTo("hidden_value");
    const ScopeChain there = ScopeChain::forStop(firmware(), *target);
    evaluator->setScopes(there);
    EXPECT_EQ(evaluator->evaluate("s_hidden + 1").text, "78");
    const ScopeChain caller = ScopeChain::forStop(firmware(), *target, 1);
    evaluator->setScopes(caller);
    EXPECT_EQ(evaluator->evaluate("local.y").text, "2");
}

TEST_F(ScopeTest, GlobalChainWithoutFrame)
{
    const ScopeChain globals = ScopeChain::forGlobals(firmware(), *target);
    ExpressionEvaluator onlyGlobals(firmware(), *target, globals);
    EXPECT_EQ(onlyGlobals.evaluate("g_point.x + BLUE").text, "9");
    EXPECT_EQ(onlyGlobals.evaluate("pc == @pc").text, "1");
}

} // namespace
} // namespace quillon::expr::test
