#include "DebugInfoFixture.h"

#include "debuginfo/DebugInfoError.h"
#include "debuginfo/LocationEvaluator.h"

#include <dwarf.h>
#include <gtest/gtest.h>

namespace quillon::debuginfo::test {
namespace {

// Operations laid out as in an encoded expression: `size` bytes each, offsets running on.
struct Op {
    std::uint8_t atom;
    std::uint64_t number = 0;
    std::uint64_t number2 = 0;
    unsigned size = 1;
    std::vector<std::uint8_t> block = {};
};

LocationExpression expression(const std::vector<Op>& ops)
{
    LocationExpression result;
    std::uint64_t offset = 0;
    for (const Op& op : ops) {
        LocationOp location;
        location.atom = op.atom;
        location.number = op.number;
        location.number2 = op.number2;
        location.offset = offset;
        location.block = op.block;
        result.push_back(location);
        offset += op.size;
    }
    return result;
}

std::uint64_t negative(std::int64_t value)
{
    return static_cast<std::uint64_t>(value);
}

constexpr std::uint32_t frameBaseValue = 0x20000F10;
constexpr std::uint32_t cfaValue = 0x20000F20;

FakeFrame exampleFrame()
{
    FakeFrame frame;
    frame.registers = {{0, 0x10}, {1, 3}, {7, 0x20000100}, {13, 0x20000F00}};
    frame.writeWord(0x20000100, 0x12345678);
    return frame;
}

std::string evaluate(const std::vector<Op>& ops)
{
    const FakeFrame frame = exampleFrame();
    const LocationEvaluator evaluator(frame, [] { return frameBaseValue; }, [] { return cfaValue; });
    return evaluator.locate(expression(ops)).describe();
}

struct Case {
    const char* label;
    std::vector<Op> ops;
    std::string location;
};

TEST(Expressions, Locate)
{
    const Case cases[] = {
        Case{"addr", {{DW_OP_addr, 0x20000010}}, "at 0x20000010"},
        Case{"reg", {{DW_OP_reg3}}, "in r3"},
        Case{"regx", {{DW_OP_regx, 13}}, "in sp"},
        Case{"breg", {{DW_OP_breg7, negative(-4)}}, "at 0x200000fc"},
        Case{"bregx", {{DW_OP_bregx, 13, 8}}, "at 0x20000f08"},
        Case{"fbreg", {{DW_OP_fbreg, negative(-12)}}, "at 0x20000f04"},
        Case{"cfa", {{DW_OP_call_frame_cfa}}, "at 0x20000f20"},
        Case{"plus", {{DW_OP_lit1}, {DW_OP_lit2}, {DW_OP_plus}, {DW_OP_stack_value}}, "value 0x3"},
        Case{"signed constant", {{DW_OP_const1s, negative(-1)}, {DW_OP_const1u, 5}, {DW_OP_plus}, {DW_OP_stack_value}},
             "value 0x4"},
        Case{"plus_uconst", {{DW_OP_breg13, 0}, {DW_OP_plus_uconst, 0x20}}, "at 0x20000f20"},
        Case{"minus", {{DW_OP_lit5}, {DW_OP_lit3}, {DW_OP_minus}, {DW_OP_stack_value}}, "value 0x2"},
        Case{"mul div mod", {{DW_OP_lit7}, {DW_OP_lit6}, {DW_OP_mul}, {DW_OP_lit5}, {DW_OP_div}, {DW_OP_lit5},
                             {DW_OP_mod}, {DW_OP_stack_value}}, "value 0x3"},
        Case{"signed division", {{DW_OP_const1s, negative(-9)}, {DW_OP_lit2}, {DW_OP_div}, {DW_OP_stack_value}},
             "value 0xfffffffc"},
        Case{"shifts", {{DW_OP_lit1}, {DW_OP_lit4}, {DW_OP_shl}, {DW_OP_lit1}, {DW_OP_shr}, {DW_OP_stack_value}},
             "value 0x8"},
        Case{"shra", {{DW_OP_const1s, negative(-8)}, {DW_OP_lit1}, {DW_OP_shra}, {DW_OP_stack_value}},
             "value 0xfffffffc"},
        Case{"bitwise", {{DW_OP_lit12}, {DW_OP_lit10}, {DW_OP_and}, {DW_OP_lit1}, {DW_OP_or}, {DW_OP_lit3},
                         {DW_OP_xor}, {DW_OP_stack_value}}, "value 0xa"},
        Case{"not neg abs", {{DW_OP_lit0}, {DW_OP_not}, {DW_OP_neg}, {DW_OP_stack_value}}, "value 0x1"},
        Case{"abs", {{DW_OP_const1s, negative(-6)}, {DW_OP_abs}, {DW_OP_stack_value}}, "value 0x6"},
        Case{"compare", {{DW_OP_const1s, negative(-1)}, {DW_OP_lit0}, {DW_OP_lt}, {DW_OP_stack_value}}, "value 0x1"},
        // 1 2 3, rot: 3 1 2, swap: 3 2 1, over: 3 2 1 2, pick 3: 3 2 1 2 3, drop, dup: 3 2 1 2 2, plus.
        Case{"stack ops", {{DW_OP_lit1}, {DW_OP_lit2}, {DW_OP_lit3}, {DW_OP_rot}, {DW_OP_swap}, {DW_OP_over},
                           {DW_OP_pick, 3}, {DW_OP_drop}, {DW_OP_dup}, {DW_OP_plus}, {DW_OP_stack_value}},
             "value 0x4"},
        Case{"deref", {{DW_OP_breg7, 0}, {DW_OP_deref}}, "at 0x12345678"},
        Case{"deref_size", {{DW_OP_breg7, 0}, {DW_OP_deref_size, 1, 0, 2}, {DW_OP_stack_value}}, "value 0x78"},
        // lit; bra +4; lit2; skip +1; lit3; stack_value: a true condition jumps over lit2.
        Case{"bra taken", {{DW_OP_lit1}, {DW_OP_bra, 4, 0, 3}, {DW_OP_lit2}, {DW_OP_skip, 1, 0, 3}, {DW_OP_lit3},
                           {DW_OP_stack_value}}, "value 0x3"},
        Case{"bra not taken", {{DW_OP_lit0}, {DW_OP_bra, 4, 0, 3}, {DW_OP_lit2}, {DW_OP_skip, 1, 0, 3}, {DW_OP_lit3},
                               {DW_OP_stack_value}}, "value 0x2"},
        Case{"implicit value", {{DW_OP_implicit_value, 2, 0, 4, {0x01, 0x02}}}, "value 0x201"},
        Case{"register pair", {{DW_OP_reg0}, {DW_OP_piece, 4, 0, 2}, {DW_OP_reg1}, {DW_OP_piece, 4, 0, 2}},
             "in r0 (4 bytes), in r1 (4 bytes)"},
        Case{"partly optimized out", {{DW_OP_addr, 0x20000010, 0, 5}, {DW_OP_piece, 2, 0, 2}, {DW_OP_piece, 2, 0, 2}},
             "at 0x20000010 (2 bytes), optimized out (2 bytes)"},
        Case{"bit piece of bytes", {{DW_OP_reg2}, {DW_OP_bit_piece, 16, 0, 3}}, "in r2 (2 bytes)"},
        Case{"entry value", {{DW_OP_GNU_entry_value, 1, 0, 3}, {DW_OP_stack_value}}, "optimized out"},
        Case{"empty", {}, "optimized out"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(evaluate(c.ops), c.location) << c.label;
    }
}

struct ErrorCase {
    const char* label;
    std::vector<Op> ops;
    std::string message;
};

TEST(ExpressionErrors, NameWhatIsWrong)
{
    const ErrorCase cases[] = {
        {"unsupported", {{DW_OP_GNU_implicit_pointer}}, "unsupported DWARF operation DW_OP_implicit_pointer"},
        {"unknown", {{0xe9}}, "unsupported DWARF operation DW_OP 0xe9"},
        {"register", {{DW_OP_breg5, 0}}, "register 5 is not available in this frame"},
        {"memory", {{DW_OP_lit4}, {DW_OP_deref}}, "cannot read memory at 0x4"},
        {"division", {{DW_OP_lit1}, {DW_OP_lit0}, {DW_OP_div}}, "division by zero in a DWARF expression"},
        {"underflow", {{DW_OP_lit1}, {DW_OP_plus}}, "DWARF expression stack underflow"},
        {"bit piece", {{DW_OP_reg2}, {DW_OP_bit_piece, 3, 1, 3}}, "DW_OP_bit_piece of bits that are not whole bytes"},
        {"branch", {{DW_OP_lit1}, {DW_OP_bra, 1, 0, 3}, {DW_OP_lit2, 0, 0, 2}, {DW_OP_lit3}},
         "a DWARF branch lands inside an operation"},
    };
    for (const ErrorCase& c : cases) {
        try {
            evaluate(c.ops);
            ADD_FAILURE() << c.label << ": no error";
        } catch (const DebugInfoError& error) {
            EXPECT_EQ(std::string(error.what()), c.message) << c.label;
        }
    }
}

TEST(ExpressionErrors, FrameValuesThatNobodyProvides)
{
    const FakeFrame frame = exampleFrame();
    const LocationEvaluator evaluator(frame, nullptr, nullptr);
    EXPECT_THROW(evaluator.locate(expression({{DW_OP_fbreg, 4}})), DebugInfoError);
    EXPECT_THROW(evaluator.locate(expression({{DW_OP_call_frame_cfa}})), DebugInfoError);
    EXPECT_EQ(evaluator.value(expression({{DW_OP_breg13, 16}})), 0x20000F10u);
}

// A frame of sum_points (-O0) stopped after its prologue: r7 and sp point to the frame's bottom.
FakeFrame frameAfterPrologue(std::uint32_t bottom)
{
    FakeFrame frame;
    frame.registers = {{7, bottom}, {13, bottom}};
    return frame;
}

TEST(Locals, UnoptimizedLocalsLiveInTheFrameBelowTheCfa)
{
    const Function* sum = firmware().findFunction("sum_points");
    const std::uint32_t pc = firmware().breakpointAddress(*sum);
    const std::uint32_t bottom = 0x20000E00;
    const FakeFrame frame = frameAfterPrologue(bottom);
    const auto cfa = firmware().frames().cfa(pc, frame);
    ASSERT_TRUE(cfa.has_value());
    EXPECT_EQ(firmware().frameBase(*sum, pc, frame), *cfa); // DW_OP_call_frame_cfa
    std::vector<std::uint32_t> addresses;
    for (const Variable* variable : sum->visibleAt(pc)) {
        if (variable->address) {
            continue; // the function-local static
        }
        const Location location = firmware().locate(*variable, sum, pc, frame);
        ASSERT_EQ(location.kind(), Location::Kind::Memory) << variable->name;
        EXPECT_GE(location.address(), bottom) << variable->name;
        EXPECT_LE(location.address() + variable->type->size(), *cfa) << variable->name;
        EXPECT_EQ(location.address() % 4, 0u) << variable->name;
        addresses.push_back(location.address());
    }
    std::sort(addresses.begin(), addresses.end());
    EXPECT_EQ(std::adjacent_find(addresses.begin(), addresses.end()), addresses.end());
    EXPECT_EQ(addresses.size(), 3u); // total, pts, count
}

TEST(Locals, AnUnoptimizedLocalNeedsTheFramePointer)
{
    const Function* sum = firmware().findFunction("sum_points");
    const std::uint32_t pc = firmware().breakpointAddress(*sum);
    FakeFrame frame;
    frame.registers = {{13, 0x20000E00}}; // no r7, which the CFA rule counts from
    try {
        firmware().locate(*sum->findVisible("total", pc), sum, pc, frame);
        FAIL() << "no error";
    } catch (const DebugInfoError& error) {
        EXPECT_EQ(std::string(error.what()), "cannot locate 'total': register 7 is not available in this frame");
    }
}

// AAPCS: the first four arguments arrive in r0 to r3.
TEST(Locals, OptimizedParametersAreInTheirArgumentRegistersAtEntry)
{
    const FakeFrame frame;
    for (const char* name : {"checksum", "clamp_add", "window_average"}) {
        const Function* f = firmware().findFunction(name);
        for (unsigned i = 0; i < f->parameters.size(); ++i) {
            const Location location = firmware().locate(f->parameters[i], f, f->entry, frame);
            ASSERT_EQ(location.kind(), Location::Kind::Register) << name << " " << f->parameters[i].name;
            EXPECT_EQ(location.dwarfRegister(), i) << name << " " << f->parameters[i].name;
        }
    }
    // clamp_add computes s = a + b into r0: a is only an entry value afterwards.
    const Function* clamp = firmware().findFunction("clamp_add");
    EXPECT_EQ(firmware().locate(clamp->parameters.front(), clamp, clamp->extent().high - 2, frame).kind(),
              Location::Kind::OptimizedOut);
}

TEST(Locals, OptimizedLocalsFollowTheirLocationList)
{
    const Function* average = firmware().findFunction("window_average");
    const Variable* avg = average->findVisible("avg", average->entry);
    ASSERT_NE(avg, nullptr);
    ASSERT_GT(avg->location.entries().size(), 0u);
    EXPECT_FALSE(avg->location.isSingle());
    const FakeFrame frame;
    // Not computed yet at the entry.
    EXPECT_EQ(firmware().locate(*avg, average, average->entry, frame).kind(), Location::Kind::OptimizedOut);

    // In the line that calls checksum, avg must survive the call: in a callee-saved register
    // (r4-r11), never in one the call may change.
    const std::vector<std::uint32_t> callLine =
        firmware().lines().addresses("optimized.c", markerLine("optimized.c", "@after_call"));
    ASSERT_EQ(callLine.size(), 1u);
    const AddressRange range = *firmware().lines().lineRange(callLine.front());
    int inRegister = 0;
    for (std::uint32_t pc = range.low; pc < range.high; pc += 2) {
        const Location location = firmware().locate(*avg, average, pc, frame);
        if (location.kind() == Location::Kind::Register) {
            EXPECT_GE(location.dwarfRegister(), 4u) << pc;
            EXPECT_LE(location.dwarfRegister(), 11u) << pc;
            ++inRegister;
        }
    }
    EXPECT_GT(inRegister, 0);
}

TEST(Locals, AConstantRangeOfAListIsAValue)
{
    // sum = 0 before the loop: a literal with DW_OP_stack_value somewhere in checksum.
    const Function* checksum = firmware().findFunction("checksum");
    const Variable* sum = checksum->findVisible("sum", checksum->entry);
    ASSERT_NE(sum, nullptr);
    bool zero = false;
    for (std::uint32_t pc = checksum->entry; pc < checksum->extent().high; pc += 2) {
        const Location location = firmware().locate(*sum, checksum, pc, FakeFrame());
        if (location.kind() == Location::Kind::Value) {
            EXPECT_EQ(location.bytes(), (std::vector<std::uint8_t>{0, 0, 0, 0}));
            zero = true;
        }
    }
    EXPECT_TRUE(zero);
}

} // namespace
} // namespace quillon::debuginfo::test
