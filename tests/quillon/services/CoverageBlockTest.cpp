// Coverage recorded from batches of instructions: stops inside a block of straight-line code, and loops that enter
// a block many times, count as the instructions that ran one by one do. Addresses of classify from the analyzer
// firmware's disassembly (see CoverageServiceTest): c0 push, c2 mov, c4 cbz | c6 cmp, c8 blt | ca movs, cc bl note (4) | d0 movs, d2 pop,
// where "|" ends a block (a branch ends one); count_nonzero's loop body has the block 100 ldr.w, 104 cmp, 106 beq.
#include "CoverageFixture.h"

#include "services/CoverageMarks.h"
#include "services/CoverageRecorder.h"
#include "target/ExecutionObserver.h"

namespace quillon::services {

namespace {

constexpr std::uint32_t kReturn = 0x0FFFFF00; // no code there: a call ends

/// A recorder fed one instruction at a time, as coverage was recorded before blocks: the reference.
class InstructionByInstruction final : public target::ExecutionObserver {
public:
    InstructionByInstruction(CoverageMarks& marks, const target::Target& target) : m_recorder(marks, target)
    {
        m_recorder.setRecording(true);
    }
    void onRunStart(std::uint64_t cycle) override { m_recorder.onRunStart(cycle); }
    void onInstruction(std::uint32_t address, std::uint32_t size, std::uint64_t cycle) override
    {
        m_recorder.onInstruction(address, size, cycle);
    }
    void finish(std::uint32_t pc) { m_recorder.finish(pc); }

private:
    CoverageRecorder m_recorder;
};

class CoverageBlockTest : public CoverageFixture {
protected:
    /// Starts a call of the function on the bare target, returning to kReturn; stops where the target stops.
    target::StopInfo callDirectly(const std::string& name, std::uint32_t argument)
    {
        target->setReturnAddress(kReturn);
        target->writeRegister(target::Register::R0, argument);
        target->writeRegister(target::Register::LR, kReturn | 1u);
        target->writeRegister(target::Register::PC, function(name).address);
        return target->runToStop();
    }
};

struct StopCase {
    std::uint32_t offset; ///< of the breakpoint in classify
    CoverageCounts atStop;
    const char* reasoning;
};

TEST_F(CoverageBlockTest, ABreakpointInsideABlockLeavesTheRestOfItUncountedUntilItRuns)
{
    const StopCase cases[] = {
        {0x2, {44, 2, 2, 0, 0, 0, 0}, "stopped before mov at c2: only push ran of the block c0..c5"},
        {0x4, {44, 4, 2, 0, 0, 0, 0}, "stopped before cbz at c4: push and mov ran, the branch did not"},
        {0x8, {44, 8, 2, 1, 0, 1, 0}, "stopped before blt at c8: cbz went on to c6, cmp ran"},
        {0xc, {44, 12, 2, 2, 0, 2, 0}, "stopped before bl at cc: blt went on to ca, movs ran"},
    };
    const std::uint32_t classify = function("classify").address;
    for (const StopCase& c : cases) {
        SCOPED_TRACE(c.reasoning);
        documents->start(kDocument);
        const std::uint32_t at = classify + c.offset;
        target->setBreakpoint(at);
        target::StopInfo stop = callDirectly("classify", 4);
        ASSERT_EQ(stop.reason, target::StopReason::Breakpoint) << stop.message;
        ASSERT_EQ(stop.pc, at);
        EXPECT_EQ(of("classify"), c.atStop);

        stop = target->runToStop();
        ASSERT_EQ(stop.reason, target::StopReason::Returned) << stop.message;
        EXPECT_TRUE(documents->stop(kDocument));
        EXPECT_EQ(of("classify"), (CoverageCounts{44, 20, 2, 2, 0, 2, 0})) << "as a call without the stop";
        target->removeBreakpoint(at);
    }
    target->setReturnAddress(std::nullopt);
}

// Blocks entered thousands of times (mix's loop) and blocks cut by stops give the marks that the same runs give
// instruction by instruction, byte for byte.
TEST_F(CoverageBlockTest, LoopsAndStopsRecordTheSameMarksAsInstructionByInstruction)
{
    CoverageMarks reference(SpanSet{{0x00000000, 0x00040000}, {0x20000000, 0x20010000}});
    InstructionByInstruction oneByOne(reference, *target);
    target->addObserver(&oneByOne);
    documents->start(kDocument);

    EXPECT_EQ(call("mix", {"300"}), call("mix", {"300"})) << "the same run twice";
    call("count_nonzero", {"&g_values[0]", "4"});
    call("classify", {"-5"});
    target->setBreakpoint(function("count_nonzero").address + 0x14); // 100 ldr.w, inside the block 100..107
    const std::uint32_t test = tests->createTest("count_nonzero");
    tests->createParameter(test, 0, "values");
    tests->createParameter(test, 1, "count");
    tests->init(test);
    tests->modify("values", "&g_values[0]");
    tests->modify("count", "2");
    tests->run(test);
    tests->waitWhileRunning(test, std::chrono::seconds(10));
    tests->destroyTest(test);
    target->removeAllBreakpoints();

    EXPECT_TRUE(documents->stop(kDocument));
    oneByOne.finish(target->pc());
    target->removeObserver(&oneByOne);

    for (const char* name : {"mix", "count_nonzero", "classify", "note"}) {
        const SymbolInfo info = function(name);
        const std::vector<std::uint8_t> bitmap = coverage->bitmap(kDocument, info.address, info.address + info.size - 1);
        for (std::uint32_t i = 0; i < info.size; ++i) {
            ASSERT_EQ(bitmap[i] & CoverageMarks::Recorded, reference.get(info.address + i) & CoverageMarks::Recorded)
                << name << " at " << std::hex << info.address + i;
        }
    }
    // mix (19c..1c5): cbz at 19e never taken, so movs and bx at 1c2 never ran; the loop's bne at 1be went back
    // 299 times and on once in each call. The IT blocks' instructions count whether their condition held or not.
    EXPECT_EQ(of("mix"), (CoverageCounts{42, 38, 2, 2, 0, 1, 1}));
    EXPECT_EQ(of("count_nonzero"), (CoverageCounts{44, 42, 3, 3, 0, 1, 2})) << "as the loop's test counted by hand";
}

} // namespace
} // namespace quillon::services
