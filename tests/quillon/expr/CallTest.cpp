// Calls of target functions by the procedure call standard.
#include "ExprFixture.h"

#include <array>

namespace quillon::expr::test {
namespace {

struct Case {
    const char* expression;
    const char* text;
};

class CallTest : public ExprFixture {
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

    std::array<std::uint32_t, 17> registers() const
    {
        std::array<std::uint32_t, 17> values{};
        for (unsigned i = 0; i < values.size(); ++i) {
            values[i] = target->readRegister(static_cast<target::Register>(i));
        }
        return values;
    }
};

TEST_F(CallTest, IntegerArgumentsInRegistersAndOnTheStack)
{
    expectAll({
        {"add(2, 3)", "5"},
        {"add(g_s32, 1)", "-99999"},
        {"add(2.9, 'a')", "99"},                    // converted to the parameters' int
        {"sum6(1, 2, 3, 4, 5, 6)", "91"},           // e and f on the stack
        {"add(2, 3) + add(4, 5)", "14"},
        {"add(add(1, 2), add(3, 4))", "10"},
        {"ring_count(&g_ring)", "3 '\\003'"},
        {"g_fn(4, 5)", "9"},
        {"(*g_fn)(4, 5)", "9"},
    });
}

TEST_F(CallTest, SixtyFourBitValuesInEvenRegisterPairs)
{
    expectAll({
        {"add64(5000000000, -1)", "4999999999"},
        {"add64(g_s64, 1)", "-4999999999"},
        // a in r0, b in r2:r3 (r1 is skipped), c on the stack.
        {"mix(1, 2, 3)", "1000000000023"},
    });
}

TEST_F(CallTest, StructuresByValueAndReturned)
{
    expectAll({
        {"sum_point(g_point)", "296"},
        {"sum_point(g_records[0].corners[1])", "304"},
        {"make_point(7, -8)", "{x = 7, y = -8}"}, // through the hidden pointer
        {"make_point(7, -8).y", "-8"},
        {"make_small(-1, 2)", "{a = -1, b = 2}"}, // four bytes come back in r0
        {"sum_big(*(struct big *)g_matrix)", "91"}, // split between r0-r3 and the stack
        // a in r0; the 8-aligned structure in r2, r3 and on the stack: w = {1, 3 + (4 << 32)}.
        {"sum_wide(1, *(struct wide *)g_matrix)", "1717986918711"},
    });
}

TEST_F(CallTest, FloatsAndDoublesInCoreRegisters)
{
    expectAll({
        {"scale(1.5, 2)", "3"},
        {"scale(g_double, g_float)", "-3.375"},
        {"halve(5)", "2.5"},
        {"halve(g_float) * 4", "3"},
    });
}

TEST_F(CallTest, SideEffectsStayAndRegistersAreRestored)
{
    const auto before = registers();
    EXPECT_EQ(text("bump(2)"), "2");
    EXPECT_EQ(text("bump(3)"), "5");
    EXPECT_EQ(text("g_counter"), "5");
    EXPECT_EQ(registers(), before);
    EXPECT_EQ(text("length(g_text)"), "5");
    EXPECT_EQ(text("sizeof bump(7)"), "4");
    EXPECT_EQ(text("g_counter"), "5") << "sizeof calls nothing";
    EXPECT_FALSE(target->returnAddress().has_value());
}

TEST_F(CallTest, ResumingAfterACallPassesTheBreakpointItStoppedAt)
{
    // Stopped at a breakpoint; a call in between must not make the next run stop there again.
    const std::uint32_t stoppedAt = firmware().breakpointAddress(*firmware().findFunction("hidden_value"));
    target->setBreakpoint(stoppedAt);
    ASSERT_EQ(target->runToStop().pc, stoppedAt);
    EXPECT_EQ(text("bump(1)"), "1");
    EXPECT_EQ(target->stopInfo().reason, target::StopReason::Breakpoint);
    EXPECT_EQ(target->pc(), stoppedAt);
    target::RunOptions options;
    options.instructionLimit = 10000;
    const target::StopInfo next = target->runToStop(options);
    EXPECT_NE(next.pc, stoppedAt);
}

TEST_F(CallTest, CallsThatDoNotReturnFailAndLeaveTheCoreAsItWas)
{
    const auto before = registers();
    EXPECT_EQ(error("spin()"), "the call of 'spin' did not return within 1000000 instructions (column 5)");
    EXPECT_EQ(registers(), before);
    const std::string fault = error("crash()");
    EXPECT_EQ(fault.rfind("the call of 'crash' faulted at 0x", 0), 0u) << fault;
    EXPECT_EQ(registers(), before);
    target->setBreakpoint(firmware().findFunction("add")->entry);
    EXPECT_EQ(error("add(1, 2)").rfind("the call of 'add' stopped at a breakpoint at 0x", 0), 0u);
    EXPECT_EQ(registers(), before);
}

TEST_F(CallTest, BadCallsAreErrors)
{
    const std::vector<Case> cases = {
        {"add(1)", "too few arguments in the call of 'add' (column 4)"},
        {"add(1, 2, 3)", "too many arguments in the call of 'add' (column 4)"},
        {"add(g_point, 1)", "cannot convert 'struct point' to 'int' (column 4)"},
        {"g_point(1)", "'struct point' is not a function (column 8)"},
        {"length(\"abc\")", "the array is not in memory (column 7)"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(error(c.expression), c.text) << c.expression;
    }
}

TEST_F(CallTest, TheCallerPlacesAFrameBelowAGivenStackTop)
{
    Converter converter(firmware().types(), *target);
    FunctionCaller caller(converter, *target, {1000, 0x9FFFFF00});
    const debuginfo::Function* makePoint = firmware().findFunction("make_point");
    const std::uint32_t top = 0x20008004;
    const std::vector<Value> arguments = {Value::ofInteger(converter.intType(), 11),
                                          Value::ofInteger(converter.intType(), 12)};
    const Value point = caller.call(makePoint->entry, makePoint->type, arguments, "make_point", top);
    EXPECT_EQ(ValueFormatter(firmware(), *target).format(point), "{x = 11, y = 12}");
    // The returned structure lies 8-aligned right below the top.
    std::array<std::int32_t, 2> buffer{};
    target->readMemory(0x20007FF8, buffer.data(), 8);
    EXPECT_EQ(buffer[0], 11);
    EXPECT_EQ(buffer[1], 12);

    const FunctionCaller::Frame frame = caller.setUp(makePoint->entry, makePoint->type, arguments, top, "make_point");
    EXPECT_EQ(frame.resultAddress, 0x20007FF8u);
    EXPECT_EQ(frame.stackPointer, 0x20007FF8u);
    EXPECT_EQ(target->readRegister(target::Register::R0), 0x20007FF8u);
    EXPECT_EQ(target->readRegister(target::Register::R1), 11u);
    EXPECT_EQ(target->readRegister(target::Register::R2), 12u);
    EXPECT_EQ(target->readRegister(target::Register::LR), 0x9FFFFF01u);
    EXPECT_EQ(target->readRegister(target::Register::PC), makePoint->entry);
}

} // namespace
} // namespace quillon::expr::test
