#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "ComFixture.h"
#include "OrbelDebug2.h"
#include "OrbelFlags.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;
using F = OrbelDebugFlags;

const std::string kFirmware = std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware/build/firmware.elf";

class DebugAdapterTest : public ComFixture {
protected:
    DebugAdapterTest() : debug(query<OrbelDebug2>(object, IID_OrbelDebug2)) {}
    ~DebugAdapterTest() override
    {
        if (attached) {
            debug->RunControl(F::rcStop, 0, 0);
        }
        debug->Release();
    }

    /// Attached to an instance of the example firmware, downloaded.
    void start()
    {
        WORD port = 0;
        const std::string workspace = "target:\n  cpu: cortex-m3\n  memory:\n"
                                      "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                                      "    - {name: sram, start: 0x20000000, size: 0x10000}\n"
                                      "    - {name: periph, start: 0x40010000, size: 0x10000, access: rw}\n"
                                      "download:\n  - file: "
                                      + kFirmware + "\n";
        ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, workspaceFile("ws.yaml", workspace), &port));
        ASSERT_EQ(S_OK, attach(port));
        attached = true;
        ASSERT_EQ(S_OK, debug->RunControl(F::rcDownload, 0, 0)) << lastError().second;
    }

    BYTE status(DWORD flags = F::csfStopReason)
    {
        SCPUStatus record;
        EXPECT_EQ(S_OK, debug->GetCPUStatus(flags, &record));
        return record.m_byStatus;
    }

    ADDRESS address(const char* name, DWORD flags = F::gafFunctions)
    {
        BYTE area = 0xFF;
        ADDRESS at = 0;
        DWORD size = 0;
        SType type;
        EXPECT_EQ(S_OK, debug->GetAddress(flags, name, &area, &at, &size, &type)) << name;
        EXPECT_EQ(0, area);
        return at;
    }

    OrbelDebug2* debug;
    bool attached = false;
};

TEST_F(DebugAdapterTest, WithoutAnInstanceEveryOperationAnswersNotConnected)
{
    char text[64] = "";
    SCPUStatus cpu;
    SValue value;
    SType type;
    const std::vector<std::pair<std::string, std::function<HRESULT()>>> operations = {
        {"OrbelDebug::GetCPUStatus", [&] { return debug->GetCPUStatus(0, &cpu); }},
        {"OrbelDebug::ReadRegister", [&] { return debug->ReadRegister(0, "pc", &value, &type); }},
        {"OrbelDebug::Evaluate", [&] { return debug->Evaluate(0, "1", text, sizeof text, &value, &type); }},
        {"OrbelDebug::RunControl", [&] { return debug->RunControl(F::rcRun, 0, 0); }},
        {"OrbelDebug2::SetBP", [&] { return debug->SetBP(1, 0, 0, "main", 0, 0, ""); }},
        {"OrbelDebug2::Download", [&] { return debug->Download(F::dlClearList, nullptr, 0, nullptr, nullptr, 0); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        EXPECT_EQ(ORBEL_E_NOT_CONNECTED, operation());
        EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, name + ": not attached to a Quillon instance"), lastError());
    }
}

TEST_F(DebugAdapterTest, CpuInfoNamesOneByteMausOfTheArmFamily)
{
    CCPUInfo info;
    EXPECT_EQ(S_OK, debug->GetCPUInfo(&info));
    EXPECT_EQ(22, info.m_wCPU);
    EXPECT_EQ(0, info.m_wVariant);
}

TEST_F(DebugAdapterTest, StatusTellsStateAndReasonOnlyWhenAsked)
{
    start();
    EXPECT_EQ(F::cpuStopped, status()) << "a downloaded core stands at reset, without a reason";
    ASSERT_EQ(S_OK, debug->SetBP(F::sbpSymbol, 0, 0, "rb_put", 0, 0, ""));
    ASSERT_EQ(S_OK, debug->RunControl(F::rcRun | F::wmWait2, 0, 0)) << lastError().second;
    EXPECT_EQ(F::cpuStopped | F::srBreakpoint, status());
    EXPECT_EQ(F::cpuStopped, status(F::csfNone));
    SCPUStatus record;
    ASSERT_EQ(S_OK, debug->GetCPUStatus(0, &record));
    EXPECT_EQ(0, record.m_byExecArea);
    EXPECT_LT(address("rb_put"), record.m_aExecPoint);
    char name[64];
    ASSERT_EQ(S_OK, debug->GetSymbolAtAddress(F::sFunctions, 0, record.m_aExecPoint, name, sizeof name));
    EXPECT_EQ(0u, std::string(name).rfind("rb_put+0x", 0)) << "the breakpoint stops after the prologue: " << name;

    ASSERT_EQ(S_OK, debug->RunControl(F::rcStepInst, 0, 0));
    EXPECT_EQ(F::cpuStopped | F::srStep, status());
    ASSERT_EQ(S_OK, debug->RunControl(F::rcRun, 0, 0));
    ASSERT_EQ(S_OK, debug->RunControl(F::rcStop, 0, 0));
    EXPECT_TRUE((status() & F::srMask) == F::srExplicit || (status() & F::srMask) == F::srBreakpoint)
        << "stopped by the request, unless rb_put was reached first";
}

TEST_F(DebugAdapterTest, AWaitThatEndsBeforeTheStopAnswersStillRunning)
{
    start();
    EXPECT_EQ(ORBEL_E_STILL_RUNNING, debug->RunControl(F::rcRun | F::wmWait1, 0, 0)) << "main never returns";
    EXPECT_EQ(F::cpuRunning, status() & F::cpuStateMask);
    EXPECT_EQ(S_OK, debug->RunControl(F::rcStop, 0, 0));
    EXPECT_EQ(F::cpuStopped | F::srExplicit, status());
    EXPECT_EQ(E_INVALIDARG, debug->RunControl(F::rcStepInst | F::wbWait, 0, 0)) << "a step takes no wait bits";
    EXPECT_EQ(E_INVALIDARG, debug->RunControl(7, 0, 0));
}

TEST_F(DebugAdapterTest, FailuresAnswerTheCodeOfTheirKind)
{
    start();
    BYTE data[8] = {};
    BYTE results[8] = {};
    SValue value;
    SType type{SType::tUnsigned, 16};
    char text[512] = "";
    const std::vector<std::pair<HRESULT, std::function<HRESULT()>>> cases = {
        {ORBEL_E_CAN_NOT_ACCESS, [&] { return debug->ReadMemory(0, 0, 0x60000000, 4, data, 1, results); }},
        {ORBEL_E_SIZE, [&] { return debug->ReadMemory(0, 0, 0x20000000, 2, data, 2, results); }},
        {ORBEL_S_SIZE, [&] { return debug->WriteRegister(0, "r0", &value, &type); }},
        {ORBEL_E_BAD_ID, [&] { return debug->ReadRegister(0, "r99", &value, &type); }},
        {ORBEL_E_BAD_ID, [&] { return debug->SetBP(F::sbpSymbol, 0, 0, "no_such_function", 0, 0, ""); }},
        {ORBEL_E_NO_BREAKPOINT, [&] { return debug->Breakpoint(F::bpDelete | F::bpSymbol, 0, 0, "rb_get", 0); }},
        {E_INVALIDARG, [&] { return debug->Breakpoint(F::bpSet | F::bpAddress, 0, 0x100, nullptr, 0); }},
        {E_INVALIDARG, [&] { return debug->SetBP(F::sbpAddress, 0, 0x100, nullptr, 0, -1, ""); }},
        {ORBEL_E_BAD_ID, [&] { return debug->Evaluate(0, "g_level +", text, sizeof text, &value, &type); }},
        {ORBEL_E_NOT_AVAILABLE, [&] { return debug->LaunchCore(F::lckCore, 1, text, sizeof text); }},
        {E_NOTIMPL, [&] { return debug->Reserved17(); }},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(cases[i].first, cases[i].second());
        const auto [code, message] = lastError();
        EXPECT_EQ(ORBEL_S_MSG_FAIL, code);
        EXPECT_FALSE(message.empty());
    }
    EXPECT_EQ(std::vector<BYTE>(4, 1), std::vector<BYTE>(results, results + 4)) << "an access result per MAU";
}

TEST_F(DebugAdapterTest, EvaluateTellsTheReasonOfAFailureInItsBuffer)
{
    start();
    char text[512] = "";
    SValue value;
    SType type;
    ASSERT_EQ(ORBEL_E_BAD_ID, debug->Evaluate(0, "no_such_name + 1", text, sizeof text, &value, &type));
    EXPECT_NE(nullptr, std::strstr(text, "no_such_name")) << text;
    EXPECT_NE(std::string::npos, lastError().second.find(text));

    ASSERT_EQ(S_OK, debug->Evaluate(0, "sizeof(ring_t) * 2", text, sizeof text, &value, &type)) << text;
    EXPECT_EQ(40u, value.m_qwValue) << "16 characters and 4 bytes, twice";
    EXPECT_EQ(SType::tUnsigned, type.m_byType);
    EXPECT_STREQ("40", text);
    char small[3] = "";
    ASSERT_EQ(S_OK, debug->Evaluate(0, "1000", small, sizeof small, &value, &type));
    EXPECT_STREQ("10", small) << "a value text is cut to the buffer";
}

TEST_F(DebugAdapterTest, ModifyTakesATypedValueOrATextInTheBuffer)
{
    start();
    char text[512] = "";
    const SValue seven = [] { SValue v; v.m_iValue = 7; return v; }();
    const SType intType{SType::tSigned, 32};
    ASSERT_EQ(S_OK, debug->Modify(0, "g_gain", text, sizeof text, &seven, &intType)) << text;
    EXPECT_STREQ("7", text);
    std::strcpy(text, "g_gain * 3 - 1");
    ASSERT_EQ(S_OK, debug->Modify(F::efValueAsText, "g_gain", text, sizeof text, nullptr, nullptr)) << text;
    EXPECT_STREQ("20", text);
    SValue read;
    ASSERT_EQ(S_OK, debug->ReadValue(0, 0, address("g_gain", F::gafVariables), &read, &intType));
    EXPECT_EQ(20, read.m_iValue);
    EXPECT_EQ(E_INVALIDARG, debug->Modify(0, "g_gain", text, sizeof text, nullptr, nullptr));
}

TEST_F(DebugAdapterTest, SymbolsAndLinesAnswerFalseWhereThereIsNone)
{
    start();
    BYTE area = 0;
    ADDRESS at = 0;
    DWORD size = 0;
    SType type;
    EXPECT_EQ(S_FALSE, debug->GetAddress(F::gafFunctions, "no_such_function", &area, &at, &size, &type));
    ASSERT_EQ(S_OK, debug->GetAddress(F::gafVariables, "g_uart_tx", &area, &at, &size, &type));
    EXPECT_EQ(20u, size);
    EXPECT_EQ(SType::tCompound, type.m_byType);

    char text[260] = "x";
    EXPECT_EQ(S_FALSE, debug->GetSymbolAtAddress(F::sFunctions, 0, 0x3FFF0, text, sizeof text));
    EXPECT_STREQ("", text);
    char small[4];
    EXPECT_EQ(ORBEL_E_SIZE, debug->GetSymbolAtAddress(F::sFunctions, 0, address("rb_put"), small, sizeof small));
    DWORD line = 99;
    EXPECT_EQ(S_FALSE, debug->GetSourceLineAtAddress(0, 0x3FFF0, text, sizeof text, &line));
    EXPECT_EQ(0u, line);

    ADDRESS addresses[4] = {};
    DWORD count = 0;
    EXPECT_EQ(ORBEL_E_SIZE, debug->GetAddressOfSourceLine(0, "ring_buffer.c", 26, addresses, &count));
    ASSERT_GT(count, 0u) << "the room that is needed";
    ASSERT_LE(count, 4u);
    EXPECT_EQ(S_OK, debug->GetAddressOfSourceLine(0, "ring_buffer.c", 26, addresses, &count));
    ASSERT_EQ(S_OK, debug->GetSourceLineAtAddress(0, addresses[0], text, sizeof text, &line));
    EXPECT_EQ(26u, line);
    EXPECT_NE(nullptr, std::strstr(text, "ring_buffer.c"));
    count = 4;
    EXPECT_EQ(S_FALSE, debug->GetAddressOfSourceLine(0, "ring_buffer.c", 1, addresses, &count));
    EXPECT_EQ(0u, count);
}

TEST_F(DebugAdapterTest, BreakpointCommandsWorkOnEveryLocationKind)
{
    start();
    ASSERT_EQ(S_OK, debug->SetBP(F::sbpLine, 0, 0, "ring_buffer.c", 26, 0, ""));
    EXPECT_EQ(S_FALSE, debug->SetBP(F::sbpLine, 0, 0, "ring_buffer.c", 26, 2, "")) << "replaced";
    EXPECT_EQ(S_OK, debug->Breakpoint(F::bpDisable | F::bpLine, 0, 0, "ring_buffer.c", 26));
    EXPECT_EQ(S_OK, debug->Breakpoint(F::bpAllSoftware | F::bpEnable, 0, 0, nullptr, 0));
    EXPECT_EQ(S_OK, debug->Breakpoint(F::bpDelete | F::bpLine, 0, 0, "ring_buffer.c", 26));
    EXPECT_EQ(ORBEL_E_NO_BREAKPOINT, debug->Breakpoint(F::bpDelete | F::bpLine, 0, 0, "ring_buffer.c", 26));

    const char* functions[] = {"main", "rb_init", "rb_put", "rb_get", "rb_count", "rb_free", "filter_step"};
    for (const char* function : functions) {
        SCOPED_TRACE(function);
        const HRESULT result = debug->Breakpoint(F::bpSet | F::bpHWSymbol, 0, 0, function, 0);
        EXPECT_EQ(function == functions[6] ? ORBEL_E_ERROR : S_OK, result) << "six comparators";
    }
    EXPECT_EQ(S_OK, debug->Breakpoint(F::bpDeleteAll, 0, 0, nullptr, 0));
    EXPECT_EQ(S_OK, debug->Breakpoint(F::bpSet | F::bpHWSymbol, 0, 0, "filter_step", 0));
}

TEST_F(DebugAdapterTest, DownloadChecksItsRecordAndKeepsItsLists)
{
    start();
    std::string file = kFirmware;
    SDownload record;
    record.m_dwSize = sizeof(SDownload) - 1;
    EXPECT_EQ(E_INVALIDARG, debug->Download(F::dlFile, file.data(), DWORD(file.size() + 1), &record, nullptr, 0));
    record.m_dwSize = sizeof(SDownload);
    record.m_dwFlags = F::dcSymbolsOffsetValid;
    record.m_aSymbolsOffset = 0x100;
    EXPECT_EQ(ORBEL_E_NOT_AVAILABLE, debug->Download(F::dlFile, file.data(), DWORD(file.size() + 1), &record, nullptr, 0));
    EXPECT_NE(std::string::npos, lastError().second.find("symbols")) << lastError().second;
    record.m_aSymbolsOffset = 0;
    EXPECT_EQ(S_OK, debug->Download(F::dlFile, file.data(), DWORD(file.size() + 1), &record, nullptr, 0));
    std::string missing = "/no/such/firmware.elf";
    EXPECT_EQ(ORBEL_E_FILE_NOT_FOUND,
              debug->Download(F::dlFile, missing.data(), DWORD(missing.size() + 1), &record, nullptr, 0));

    char name[512];
    char options[512];
    SDownload zero;
    std::strcpy(name, "a.elf");
    std::strcpy(options, "-x");
    ASSERT_EQ(S_OK, debug->Download(F::dlAddToList | F::dlList1, name, sizeof name, &zero, options, sizeof options));
    std::strcpy(name, "b.elf");
    ASSERT_EQ(S_OK, debug->Download(F::dlAddToList | F::dlList1, name, sizeof name, &zero, options, sizeof options));
    ASSERT_EQ(S_OK, debug->Download(F::dlGetMember | F::dlList1 | 1, name, sizeof name, &zero, options, sizeof options));
    EXPECT_NE(nullptr, std::strstr(name, "b.elf"));
    EXPECT_STREQ("-x", options);
    EXPECT_EQ(S_FALSE, debug->Download(F::dlGetMember | F::dlList1 | 2, name, sizeof name, &zero, options, sizeof options));
    EXPECT_EQ(S_OK, debug->Download(F::dlRemoveFromList | F::dlList1 | 0, nullptr, 0, &zero, nullptr, 0));
    EXPECT_EQ(S_FALSE, debug->Download(F::dlRemoveFromList | F::dlList1 | 1, nullptr, 0, &zero, nullptr, 0));
    EXPECT_EQ(S_OK, debug->Download(F::dlClearList | F::dlList1, nullptr, 0, &zero, nullptr, 0));
    EXPECT_EQ(S_FALSE, debug->Download(F::dlGetMember | F::dlList1, name, sizeof name, &zero, options, sizeof options));
    ASSERT_EQ(S_OK, debug->Download(F::dlGetMember, name, sizeof name, &zero, options, sizeof options));
    EXPECT_NE(nullptr, std::strstr(name, "firmware.elf")) << "list 0 is the workspace's download";
}

TEST_F(DebugAdapterTest, BatchAccessReadsAndWritesItemByItem)
{
    start();
    SBatchAccessHeader header;
    header.m_dwNumItems = 3;
    SBatchAccessItem items[3];
    items[0].m_byFlags = 1;
    items[0].m_bySize = 4;
    items[0].m_aAddress = 0x20000100;
    items[0].m_abyData[0] = 0x78;
    items[0].m_abyData[3] = 0x12;
    items[1].m_bySize = 4;
    items[1].m_aAddress = 0x20000100;
    items[2].m_bySize = 4;
    items[2].m_aAddress = 0x60000000;
    SBatchAccessItemResult results[3];
    EXPECT_EQ(E_FAIL, debug->BatchAccess(0, &header, items, results));
    EXPECT_EQ(0, results[0].m_byResult);
    EXPECT_EQ(0, results[1].m_byResult);
    EXPECT_EQ(0x78, results[1].m_abyData[0]);
    EXPECT_EQ(0x12, results[1].m_abyData[3]);
    EXPECT_NE(0, results[2].m_byResult);
    header.m_dwNumItems = 2;
    EXPECT_EQ(S_OK, debug->BatchAccess(0, &header, items, results));
}

} // namespace
} // namespace quillon::com::test
