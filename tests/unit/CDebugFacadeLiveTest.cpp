// The debug controllers against the simulated Quillon of liborbel.so and the example firmware.
// Skipped while liborbel.so or the firmware is not built.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <utility>
#include <memory>
#include <string>

#include "CDataController.h"
#include "CDebugFacade.h"
#include "ConnectionMgr.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "OrbelDebugFlags.h"
#include "LiveOrbelTest.h"

using namespace kestrix;

namespace {

const std::string FIRMWARE_FOLDER = std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware";

/// The number of the first line of the example firmware's `file` that holds `text`.
unsigned lineOf(const std::string& file, const std::string& text)
{
    std::ifstream in(FIRMWARE_FOLDER + "/" + file);
    std::string line;
    for (unsigned number = 1; std::getline(in, line); ++number) {
        if (line.find(text) != std::string::npos) {
            return number;
        }
    }
    ADD_FAILURE() << file << " has no line with '" << text << "'";
    return 0;
}

class CDebugFacadeLiveTest : public LiveOrbelTest {
protected:
    void SetUp() override
    {
        LiveOrbelTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        if (!std::filesystem::exists(FIRMWARE_FOLDER + "/build/firmware.elf")) {
            GTEST_SKIP() << "the example firmware is not built";
        }
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(FIRMWARE_FOLDER + "/workspace.yaml");
    }

    std::shared_ptr<ConnectionMgr> mgr;
};

/// The facade on the example firmware, downloaded and reset, with helpers that run to a stop.
class CDebugFacadeLiveFirmwareTest : public CDebugFacadeLiveTest {
protected:
    void SetUp() override
    {
        CDebugFacadeLiveTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        debug = std::make_unique<CDebugFacade>(mgr);
        debug->download();
        debug->reset();
    }
    void TearDown() override
    {
        if (debug) {
            debug->stop();
            debug->deleteAll();
        }
    }

    /// Runs (with the wait that returns on the stop) and tells where it stopped.
    CPUStatus runToStop()
    {
        EXPECT_EQ(0, debug->run(2));
        const CPUStatus status = debug->getCPUStatus();
        EXPECT_TRUE(status.isStopped());
        return status;
    }
    ADDRESS pc() { return debug->getCPUStatus().getExecutionPoint(); }
    /// The function that holds the pc, without the offset into it.
    std::string functionAtPc()
    {
        const std::string symbol = debug->getSymbolAtAddress(OrbelDebugFlags::sFunctions, 0, pc());
        return symbol.substr(0, symbol.find('+'));
    }
    unsigned lineAtPc() { return debug->getSourceLineAtAddress(pc()).getLineNumber(); }
    long long value(const std::string& expression)
    {
        const CValueType result = debug->evaluate(OrbelDebugFlags::fMonitor, expression);
        EXPECT_FALSE(result.isError()) << expression;
        return result.getLong();
    }

    std::unique_ptr<CDebugFacade> debug;
};

} // namespace

// A function breakpoint stops after the prologue; a high step leaves the line.
TEST_F(CDebugFacadeLiveFirmwareTest, BreakWaitAndStep)
{
    EXPECT_EQ(0, debug->setBP("rb_put"));
    debug->run();
    ASSERT_TRUE(debug->waitUntilStopped(10000, 10)) << "the breakpoint in rb_put stops the target";
    const CPUStatus status = debug->getCPUStatus();
    EXPECT_TRUE(status.isStopReasonBP());
    EXPECT_EQ(0u, debug->getSymbolAtAddress(OrbelDebugFlags::sFunctions, status.getExecutionArea(),
                                            status.getExecutionPoint())
                      .rfind("rb_put+0x", 0));
    EXPECT_EQ(static_cast<long long>(status.getExecutionPoint()), debug->readRegister(0, "PC").getLong());
    debug->stepHigh();
    ASSERT_TRUE(debug->waitUntilStopped(10000, 10));
    EXPECT_TRUE(debug->getCPUStatus().isStopReasonStep());
    EXPECT_NE(status.getExecutionPoint(), pc());
}

// Hit counts and conditions decide which pass of a function breakpoint stops: the filter counts its samples.
TEST_F(CDebugFacadeLiveFirmwareTest, HitCountsAndConditionsChooseThePassThatStops)
{
    struct Case {
        int hitCount;
        std::string condition;
        long long samplesBefore; // g_filter.count at the entry of the stopping call
    };
    const Case cases[] = {{3, "", 2}, {2, "g_filter.count >= 1", 2}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.hitCount) + " '" + c.condition + "'");
        debug->reset();
        EXPECT_EQ(0, debug->setBP("filter_step", c.hitCount, c.condition));
        const CPUStatus status = runToStop();
        EXPECT_TRUE(status.isStopReasonBP());
        EXPECT_EQ("filter_step", functionAtPc());
        EXPECT_EQ(c.samplesBefore, value("g_filter.count"));
        EXPECT_EQ(0, debug->deleteBP("filter_step"));
    }
}

// A breakpoint on a source line and one on its address stop at the same place, with the function's arguments
// readable there.
TEST_F(CDebugFacadeLiveFirmwareTest, LineAndAddressBreakpointsStopOnTheirLine)
{
    const unsigned storeLine = lineOf("ring_buffer.c", "rb->data[rb->head] = c;");
    const VectorDWORD addresses = debug->getAddressOfSourceLine("ring_buffer.c", storeLine);
    ASSERT_FALSE(addresses.empty());
    for (int byAddress = 0; byAddress < 2; ++byAddress) {
        SCOPED_TRACE(byAddress ? "address" : "line");
        debug->reset();
        EXPECT_EQ(0, byAddress ? debug->setBP(0, addresses[0]) : debug->setBP(storeLine, "ring_buffer.c"));
        runToStop();
        EXPECT_EQ(addresses[0], pc());
        EXPECT_EQ(storeLine, lineAtPc());
        EXPECT_EQ('0', value("c")) << "main reports a level of 0 as the digit '0'";
        const CValueType rb = debug->evaluate(0, "rb");
        ASSERT_TRUE(rb.isTypeAddress());
        EXPECT_EQ(debug->getVariableAddress("g_uart_tx").getAddress(), rb.getAddress().m_aAddress);
        EXPECT_EQ(0, byAddress ? debug->deleteBP(0, addresses[0]) : debug->deleteBP("ring_buffer.c", storeLine));
    }
}

// Steps by instruction, by line into and over calls, out of a function, and runs until a function and an address.
TEST_F(CDebugFacadeLiveFirmwareTest, StepsAndRunsUntilALocation)
{
    ASSERT_EQ(0, debug->runUntilFunction("main", 2));
    EXPECT_EQ("main", functionAtPc());
    const unsigned filterLineNumber = lineOf("main.c", "g_level = filter_step(adc_read(SENSOR_CHANNEL));");
    const VectorDWORD filterLine = debug->getAddressOfSourceLine("main.c", filterLineNumber);
    ASSERT_FALSE(filterLine.empty());
    ASSERT_EQ(0, debug->runUntilAddress(0, filterLine[0], 2));
    EXPECT_EQ(filterLine[0], pc());

    debug->stepOverHigh();
    EXPECT_EQ(filterLineNumber + 1, lineAtPc()) << "over adc_read and filter_step";
    EXPECT_EQ("main", functionAtPc());
    EXPECT_TRUE(debug->getCPUStatus().isStopReasonStep());

    debug->stepHigh();
    EXPECT_EQ("report", functionAtPc()) << "into report(g_level)";

    ASSERT_EQ(0, debug->runUntilFunction("rb_get", 2));
    EXPECT_EQ("rb_get", functionAtPc());
    ASSERT_EQ(0, debug->runUntilReturn(2));
    EXPECT_EQ("report", functionAtPc()) << "back in the caller";

    const ADDRESS inReport = pc();
    debug->gotoFunction("rb_count");
    EXPECT_EQ(debug->getFunctionAddress("rb_count").getAddress(), pc() & ~1u);
    debug->gotoAddress(0, inReport);
    EXPECT_EQ(inReport, pc());
}

// Memory and registers both ways; unmapped memory fails with the interface's words.
TEST_F(CDebugFacadeLiveFirmwareTest, MemoryAndRegistersReadWhatWasWritten)
{
    ASSERT_EQ(0, debug->runUntilFunction("filter_step", 2));
    const ADDRESS gain = debug->getVariableAddress("g_gain").getAddress();
    const VectorBYTE initial = debug->readMemory(0, 0, gain, 4, 1);
    ASSERT_EQ(8u, initial.size()) << "four bytes and four access results";
    EXPECT_EQ((VectorBYTE{1, 0, 0, 0, 0, 0, 0, 0}), initial) << "g_gain starts at 1";
    EXPECT_EQ(VectorBYTE(4, 0), debug->writeMemory(0, 0, gain, 4, 1, VectorBYTE{3, 0, 0, 0}));
    EXPECT_EQ(3, value("g_gain"));

    const SType word{SType::tSigned, 32};
    debug->writeValue(0, 0, gain, CValueType(word, -7LL));
    EXPECT_EQ(-7, debug->readValue(0, 0, gain, word).getLong());

    debug->writeRegister(0, "R3", CValueType(SType{SType::tUnsigned, 32}, 0xCAFEF00DULL));
    EXPECT_EQ(0xCAFEF00DLL, debug->readRegister(0, "r3").getLong());
    EXPECT_EQ(0xCAFEF00DLL, value("r3")) << "expressions see the registers";

    try {
        debug->readMemory(0, 0, 0x60000000, 4, 1);
        FAIL() << "unmapped memory was read";
    } catch (const IOException& e) {
        EXPECT_EQ("F. ReadMemory() failed. Memory can not be accessed. This can be caused by bad memory area "
                  "specification, out of range address, unavailability of the requested access mode (real-time) "
                  "or the CPU is not in a mode that allows memory access."
                  // Quillon's last error, which names the address.
                  "OrbelDebug::ReadMemory: cannot read 4 bytes at 0x60000000: no memory at 0x60000000",
                  e.getDesc());
    }
}

// Expressions over structs, arrays, pointers and casts; assignment in both forms.
TEST_F(CDebugFacadeLiveFirmwareTest, EvaluatesAndModifiesCExpressions)
{
    EXPECT_EQ(0, debug->setBP("filter_step", 3));
    runToStop();
    const struct {
        const char* expression;
        long long expected;
    } table[] = {
        {"g_filter.count", 2},
        {"sizeof(g_filter.samples) / sizeof(g_filter.samples[0])", 4},
        {"&g_filter.samples[2] - &g_filter.samples[0]", 2},
        {"sample * g_gain + 1", 1},
        {"(&g_filter)->sum == g_filter.sum", 1},
    };
    for (const auto& row : table) {
        EXPECT_EQ(row.expected, value(row.expression)) << row.expression;
    }
    EXPECT_TRUE(debug->evaluate(0, "g_filter").isTypeCompound());
    EXPECT_EQ("0x2", debug->evaluate(0, "g_filter.count,x").getResult().substr(0, 3));

    EXPECT_EQ("5", debug->modify(0, "g_gain", "2 + 3"));
    EXPECT_EQ(5, value("g_gain"));
    EXPECT_EQ("9", debug->modify(0, "g_gain", CValueType(SType{SType::tSigned, 32}, 9LL)));
    EXPECT_EQ(9, value("g_gain"));

    EXPECT_THROW(debug->evaluate(0, "g_filter.nothing"), IOException);
    EXPECT_THROW(debug->evaluate(0, "g_level +"), IOException);
    EXPECT_THROW(debug->modify(0, "1", "2"), IOException) << "not an lvalue";
}

// Names to addresses and back, and source lines to addresses and back.
TEST_F(CDebugFacadeLiveFirmwareTest, SymbolsAndLinesBothWays)
{
    EXPECT_EQ("rb_put", debug->getSymbolAtAddress(OrbelDebugFlags::sFunctions, 0,
                                                  debug->getFunctionAddress("rb_put").getAddress()));
    EXPECT_EQ("g_gain", debug->getSymbolAtAddress(OrbelDebugFlags::sVariables, 0,
                                                  debug->getVariableAddress("g_gain").getAddress()));
    const CSymbolInfo filter = debug->getSymbolInfo(OrbelDebugFlags::gafVariables, "g_filter");
    EXPECT_EQ(24u, filter.getSizeMAUs()) << "four samples, the sum, two bytes and padding";
    const VectorDWORD addresses = debug->getAddressOfSourceLine("sensor_filter.c", 44);
    ASSERT_FALSE(addresses.empty());
    const CLineLocation back = debug->getSourceLineAtAddress(addresses[0]);
    EXPECT_EQ(44u, back.getLineNumber());
    EXPECT_NE(std::string::npos, back.getFileName().find("sensor_filter.c"));
    EXPECT_TRUE(debug->getAddressOfSourceLine("sensor_filter.c", 2).empty());
    EXPECT_THROW(debug->getSymbolInfo(OrbelDebugFlags::gafFunctions, "no_such_function"), IllegalArgumentException);
}

// The simulated target has no flash controller: each flash command fails with its own words.
TEST_F(CDebugFacadeLiveFirmwareTest, FlashCommandsFail)
{
    CDataController data(mgr);
    const std::pair<std::function<void()>, std::string> commands[] = {
        {[&] { data.eraseFlash(); }, "Erasing of flash failed!"},
        {[&] { data.secureFlash(); }, "Securing of flash failed!"},
        {[&] { data.unsecureFlash(); }, "Unsecuring of flash failed!"},
    };
    for (const auto& [command, text] : commands) {
        try {
            command();
            ADD_FAILURE() << text << " was not raised";
        } catch (const IOException& e) {
            EXPECT_EQ(0u, e.getDesc().rfind(text, 0)) << e.getDesc();
            EXPECT_NE(std::string::npos, e.getDesc().find("not available")) << e.getDesc();
        }
    }
}
