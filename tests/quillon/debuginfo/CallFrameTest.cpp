#include "DebugInfoFixture.h"

#include "debuginfo/UnwoundFrameContext.h"

#include <gtest/gtest.h>

namespace quillon::debuginfo::test {
namespace {

constexpr unsigned sp = 13;
constexpr unsigned lr = 14;
constexpr unsigned pc = 15;

std::uint32_t symbol(const std::string& name)
{
    return firmware().elf().findSymbol(name)->address;
}

FakeFrame registersOnly()
{
    FakeFrame frame;
    for (unsigned reg = 0; reg <= 12; ++reg) {
        frame.registers[reg] = 0x1000 + reg;
    }
    frame.registers[sp] = 0x20000F00;
    frame.registers[lr] = 0x00000123;
    return frame;
}

// unwind.S: push {r4, r7, lr}; sub sp, #20; add r7, sp, #0 - then CFA = r7 + 32, with r4, r7
// and lr saved at CFA-12, CFA-8 and CFA-4.
TEST(CallFrames, HandWrittenFrameAfterItsPrologue)
{
    FakeFrame frame = registersOnly();
    frame.registers[7] = 0x20000E00;
    frame.registers[sp] = 0x20000E00;
    frame.writeWord(0x20000E20 - 12, 0x44444444);
    frame.writeWord(0x20000E20 - 8, 0x20000F80);
    frame.writeWord(0x20000E20 - 4, 0x00000235);
    const std::uint32_t body = symbol("unwind_probe_body");

    EXPECT_EQ(firmware().frames().cfa(body, frame), 0x20000E20u);
    const auto caller = firmware().unwind(body, frame);
    ASSERT_TRUE(caller.has_value());
    EXPECT_EQ(caller->cfa, 0x20000E20u);
    EXPECT_EQ(caller->returnAddress, 0x235u);
    EXPECT_EQ(caller->pc(), 0x234u);
    EXPECT_EQ(caller->lookupPc(), 0x233u);
    EXPECT_EQ(caller->reg(pc), 0x234u);
    EXPECT_EQ(caller->reg(sp), 0x20000E20u);
    EXPECT_EQ(caller->reg(4), 0x44444444u);
    EXPECT_EQ(caller->reg(7), 0x20000F80u);
    // Callee-saved and untouched: the caller's value is the callee's.
    EXPECT_EQ(caller->reg(5), 0x1005u);
    EXPECT_EQ(caller->reg(11), 0x100Bu);
    // Argument and scratch registers are the callee's to change: unknown.
    EXPECT_FALSE(caller->reg(0).has_value());
    EXPECT_FALSE(caller->reg(3).has_value());
    EXPECT_FALSE(caller->reg(12).has_value());
}

TEST(CallFrames, HandWrittenFrameWhileItsPrologueRuns)
{
    const FakeFrame frame = registersOnly();
    const std::uint32_t entry = symbol("unwind_probe");
    // Before the push: nothing on the stack yet; after it: three words.
    EXPECT_EQ(firmware().frames().cfa(entry, frame), 0x20000F00u);
    EXPECT_EQ(firmware().frames().cfa(entry + 2, frame), 0x20000F0Cu);
    EXPECT_EQ(firmware().frames().cfa(entry + 4, frame), 0x20000F20u);
}

// At its first instruction a function has touched nothing: the CFA is sp, the return address lr.
TEST(CallFrames, EveryCompiledFunctionAtItsEntry)
{
    const FakeFrame frame = registersOnly();
    int checked = 0;
    for (const Function& f : firmware().functions()) {
        if (f.declFile.empty()) {
            continue; // libgcc's assembler has no CFI
        }
        const auto caller = firmware().unwind(f.entry, frame);
        ASSERT_TRUE(caller.has_value()) << f.name;
        EXPECT_EQ(caller->cfa, 0x20000F00u) << f.name;
        EXPECT_EQ(caller->returnAddress, 0x123u) << f.name;
        EXPECT_EQ(caller->reg(4), 0x1004u) << f.name;
        ++checked;
    }
    EXPECT_GE(checked, 15);
}

TEST(CallFrames, OptimizedFunctionThatSavesRegistersForItsCall)
{
    // window_average pushes {r4, lr} so that avg survives its call of checksum.
    const Function* average = firmware().findFunction("window_average");
    const std::vector<std::uint32_t> call =
        firmware().lines().addresses("optimized.c", markerLine("optimized.c", "@after_call"));
    ASSERT_EQ(call.size(), 1u);
    FakeFrame frame = registersOnly();
    frame.writeWord(0x20000F00, 0xA4A4A4A4);
    frame.writeWord(0x20000F04, 0x00000301);
    const auto caller = firmware().unwind(call.front(), frame);
    ASSERT_TRUE(caller.has_value());
    EXPECT_TRUE(average->contains(call.front()));
    EXPECT_EQ(caller->cfa, 0x20000F08u);
    EXPECT_EQ(caller->reg(4), 0xA4A4A4A4u);
    EXPECT_EQ(caller->returnAddress, 0x301u);
}

// counter_a.c's bump stopped after its prologue, called from counter_a_next, from main, from
// Reset_Handler. The stack is laid out by the CFA each frame's rules give, as the -O0 prologues
// save: a leaf "push {r7}" (its return address stays in lr), the others "push {r7, lr}".
TEST(CallFrames, UnwindsThroughThreeCallers)
{
    const DebugInfo& info = firmware();
    const Function* bump = info.findFunction("bump", info.findUnit("counter_a.c"));
    const Function* next = info.findFunction("counter_a_next");
    const Function* main = info.findFunction("main");
    const Function* reset = info.findFunction("Reset_Handler");
    const std::uint32_t stopped = info.breakpointAddress(*bump);

    FakeFrame frame = registersOnly();
    frame.registers[7] = 0x20000E00;
    frame.registers[sp] = 0x20000E00;
    frame.registers[lr] = (info.breakpointAddress(*next) + 4) | 1;
    const std::uint32_t bumpCfa = *info.frames().cfa(stopped, frame);
    EXPECT_GT(bumpCfa, 0x20000E00u);
    EXPECT_EQ(bumpCfa % 8, 0u); // AAPCS keeps sp 8-aligned at calls
    frame.writeWord(bumpCfa - 4, 0x20000E40);
    const auto nextFrame = info.unwind(stopped, frame);
    ASSERT_TRUE(nextFrame.has_value());
    EXPECT_EQ(info.functionAt(nextFrame->lookupPc()), next);
    EXPECT_EQ(nextFrame->returnAddress, frame.registers[lr]);
    EXPECT_EQ(nextFrame->reg(7), 0x20000E40u);
    EXPECT_EQ(nextFrame->reg(sp), bumpCfa);

    const UnwoundFrameContext nextContext(frame, *nextFrame);
    const std::uint32_t nextCfa = *info.frames().cfa(nextFrame->lookupPc(), nextContext);
    EXPECT_GT(nextCfa, 0x20000E40u);
    frame.writeWord(nextCfa - 8, 0x20000E80);
    frame.writeWord(nextCfa - 4, (info.breakpointAddress(*main) + 8) | 1);
    const auto mainFrame = info.unwind(nextFrame->lookupPc(), nextContext);
    ASSERT_TRUE(mainFrame.has_value());
    EXPECT_EQ(info.functionAt(mainFrame->lookupPc()), main);
    EXPECT_EQ(mainFrame->reg(7), 0x20000E80u);
    EXPECT_EQ(mainFrame->reg(sp), nextCfa);

    const UnwoundFrameContext mainContext(frame, *mainFrame);
    const std::uint32_t mainCfa = *info.frames().cfa(mainFrame->lookupPc(), mainContext);
    EXPECT_GT(mainCfa, 0x20000E80u);
    frame.writeWord(mainCfa - 8, 0x20000FF0);
    frame.writeWord(mainCfa - 4, (info.breakpointAddress(*reset) + 4) | 1);
    const auto resetFrame = info.unwind(mainFrame->lookupPc(), mainContext);
    ASSERT_TRUE(resetFrame.has_value());
    EXPECT_EQ(info.functionAt(resetFrame->lookupPc()), reset);
    EXPECT_EQ(resetFrame->reg(sp), mainCfa);
    EXPECT_EQ(resetFrame->reg(7), 0x20000FF0u);

    // main's locals, seen from its unwound frame, lie in its frame.
    const Variable* result = main->findVisible("result", mainFrame->lookupPc());
    const Location location = info.locate(*result, main, mainFrame->lookupPc(), mainContext);
    ASSERT_EQ(location.kind(), Location::Kind::Memory);
    EXPECT_GE(location.address(), nextCfa);
    EXPECT_LT(location.address(), mainCfa);
}

TEST(CallFrames, NoFrameWhereNoCodeIs)
{
    const FakeFrame frame = registersOnly();
    EXPECT_FALSE(firmware().frames().cfa(0x20000000, frame).has_value());
    EXPECT_FALSE(firmware().unwind(0x20000000, frame).has_value());
    EXPECT_TRUE(firmware().frames().isAvailable());
}

} // namespace
} // namespace quillon::debuginfo::test
