#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "CAddressController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"
#include "OrbelDebugFlags.h"

#include <tuple>

using namespace kestrix;

namespace {

class CAddressControllerTest : public ControllerTest {
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        answers().getAddress = [](DWORD, const char* name, BYTE* area, ADDRESS* address, DWORD* size, SType* type) {
            if (std::string(name) != "ring_put") {
                return S_FALSE;
            }
            *area = 1;
            *address = 0x241;
            *size = 40;
            type->m_byType = SType::tAddress;
            type->m_byBitSize = 32;
            return S_OK;
        };
    }
};

} // namespace

TEST_F(CAddressControllerTest, SymbolsByNameInTheirSpaces)
{
    CAddressController addr(mgr());
    const CMemAddress function = addr.getFunctionAddress("ring_put");
    EXPECT_EQ(1, function.getMemArea());
    EXPECT_EQ(0x241u, function.getAddress());
    addr.getVariableAddress("ring_put");
    addr.getLabelAddress("ring_put");
    const CSymbolInfo info = addr.getSymbolInfo(0x1001, "ring_put");
    EXPECT_EQ(40u, info.getSizeMAUs());
    EXPECT_EQ(32, info.getMType().m_byBitSize);
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug.GetAddress(0x4000, ring_put)", "OrbelDebug.GetAddress(0x1000, ring_put)",
                                        "OrbelDebug.GetAddress(0x2000, ring_put)", "OrbelDebug.GetAddress(0x1001, ring_put)"}),
              debugCalls());
}

TEST_F(CAddressControllerTest, UnknownNameIsAnIllegalArgument)
{
    serverError("no symbol");
    CAddressController addr(mgr());
    const auto e = thrownBy<IllegalArgumentException>([&] { addr.getFunctionAddress("nothing"); });
    EXPECT_EQ("Symbol 'nothing' not found!", e.getDesc());
    EXPECT_EQ("  data:\n    error: Command getSymbolInfo() failed!\n    stdErr: Operation failed with error code "
              "S_FALSE. / no symbol\n",
              e.getData());
    answers().getAddress = [](DWORD, const char*, BYTE*, ADDRESS*, DWORD*, SType*) { return E_FAIL; };
    EXPECT_EQ("'getSymbolInfo(x)' command failed: E_FAIL: kestrix.orbel call failed. / no symbol",
              thrownBy<IOException>([&] { addr.getVariableAddress("x"); }).getDesc());
}

TEST_F(CAddressControllerTest, LoggedLinesOfTheLookups)
{
    startLogger();
    CAddressController addr(mgr());
    addr.getVariableAddress("ring_put");
    addr.getFunctionAddress("ring_put");
    EXPECT_EQ(1u, loggedLines("addrCtrl = obFactory.getDebugFacade()").size());
    EXPECT_EQ(1u, loggedLines("getVariableAddress").size());
    EXPECT_EQ(1u, loggedLines("getFunctionAddress").size());
    EXPECT_TRUE(loggedLines("getSymbolInfo").empty()) << "the nested lookup is not logged";
    EXPECT_EQ(1u, loggedLines("symInfo.address = 577").size()) << loggedScript();
    EXPECT_EQ(1u, loggedLines("symInfo.sizeMAUs = 40").size());
    EXPECT_EQ(1u, loggedLines("symInfo.type.type = ").size());
}

TEST_F(CAddressControllerTest, TranslationsFromAddressesAndLines)
{
    answers().getSymbolAtAddress = [](DWORD, BYTE, ADDRESS address, char* buffer, DWORD size) {
        std::snprintf(buffer, size, "%s", "main");
        return address == 0x100 ? S_OK : S_FALSE;
    };
    answers().getAddressOfSourceLine = [](const char*, int line, ADDRESS* addresses, DWORD* count) {
        if (line == 0) {
            return S_FALSE;
        }
        if (line < 0) {
            return E_FAIL;
        }
        EXPECT_EQ(100u, *count);
        addresses[0] = 0x10;
        addresses[1] = 0x20;
        *count = 2;
        return S_OK;
    };
    answers().getSourceLineAtAddress = [](ADDRESS address, char* fileName, DWORD size, DWORD* line) {
        std::snprintf(fileName, size, "%s", "/src/main.c");
        *line = 12;
        return address == 0x100 ? S_OK : S_FALSE;
    };
    CAddressController addr(mgr());
    EXPECT_EQ("main", addr.getSymbolAtAddress(OrbelDebugFlags::sFunctions, 0, 0x100));
    EXPECT_EQ("", addr.getSymbolAtAddress(OrbelDebugFlags::sFunctions, 0, 0x104));
    EXPECT_EQ((VectorDWORD{0x10, 0x20}), addr.getAddressOfSourceLine("main.c", 12));
    EXPECT_TRUE(addr.getAddressOfSourceLine("main.c", 0).empty());
    EXPECT_EQ("'getAddressOfSourceLine()' command failed! file: main.c  line: -1.\nE_FAIL: kestrix.orbel call failed.",
              thrownBy<IOException>([&] { addr.getAddressOfSourceLine("main.c", -1); }).getDesc());
    const CLineLocation found = addr.getSourceLineAtAddress(0x100, 7, 8);
    EXPECT_EQ("/src/main.c", found.getFileName());
    EXPECT_EQ(12u, found.getLineNumber());
    const CLineLocation none = addr.getSourceLineAtAddress(0x900);
    EXPECT_EQ("", none.getFileName());
    EXPECT_EQ(0u, none.getLineNumber());
    EXPECT_EQ("OrbelDebug.GetSourceLineAtAddress(0, 0x900, 260)", debugCalls().back());
    EXPECT_EQ("OrbelDebug.GetSymbolAtAddress(0x4, 0, 0x100, 512)", debugCalls()[0]);
}

TEST_F(CAddressControllerTest, CodeAreaByCPU)
{
    WORD cpu = 0;
    answers().getCPUInfo = [&](CCPUInfo* info) {
        info->m_wCPU = cpu;
        return E_FAIL; // not looked at
    };
    CAddressController addr(mgr());
    const std::vector<std::tuple<WORD, int, int>> cases = {{8, 1, 1}, {12, 1, 1}, {18, 1, 0}, {3, 0, 0}, {0xFFFF, 0, 0}};
    for (const auto& c : cases) {
        cpu = std::get<0>(c);
        EXPECT_EQ(std::get<1>(c), addr.getCodeArea(true)) << cpu;
        EXPECT_EQ(std::get<2>(c), addr.getCodeArea(false)) << cpu;
    }
}
