// OrbelIDE::Document, OrbelCoverage and OrbelHIL on an instance with the analyzer firmware: the result codes of
// the flag words and of bad input, the error classes of the coverage interface, and the texts of HIL.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "ComFixture.h"
#include "OrbelCoverage.h"
#include "OrbelCoverageFlags.h"
#include "OrbelFlags.h"
#include "OrbelHIL.h"
#include "IDescriptor.h"
#include "IVariableDescriptor.h"
#include "IVectorVariableDescriptors.h"
#include "OrbelHILFlags.h"
#include "OrbelIDE3.h"
#include "SType.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;

const std::string kAnalyzerWorkspace = "target:\n"
                                       "  memory:\n"
                                       "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                                       "    - {name: sram, start: 0x20000000, size: 0x10000}\n"
                                       "    - {name: periph, start: 0x40000000, size: 0x30000, access: rw}\n"
                                       "download:\n"
                                       "  - file: " FIRMWARE_DIR "/analyzers.elf\n"
                                       "terminal:\n"
                                       "  uart: 0x40011004\n"
                                       "hil:\n"
                                       "  - {name: Setpoint, address: 0x40020000}\n"
                                       "  - {name: Gain, kind: analog, address: 0x40020004, initial: 2.5}\n"
                                       "  - {name: Output, address: 0x40020008}\n";

class AnalyzerAdapterTest : public ComFixture {
protected:
    void SetUp() override
    {
        ide = query<OrbelIDE3>(object, IID_OrbelIDE3);
        coverage = query<OrbelCoverage>(object, IID_OrbelCoverage);
        hil = query<OrbelHIL>(object, IID_OrbelHIL);
        WORD port = 0;
        ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, workspaceFile("ws.yaml", kAnalyzerWorkspace), &port));
        ASSERT_EQ(S_OK, attach(port));
        instance = registry.instances().at(0);
        instance->debug().download();
    }
    void TearDown() override
    {
        for (IUnknown* unknown : std::vector<IUnknown*>{ide, coverage, hil}) {
            unknown->Release();
        }
    }

    HRESULT document(DWORD flags, const char* file, const char* text = nullptr, DWORD number = 0)
    {
        return ide->Document(flags, file, text, number);
    }

    /// Runs main to its end.
    void runFirmware()
    {
        instance->debug().run();
        ASSERT_TRUE(instance->debug().waitUntilStopped(std::chrono::seconds(10)));
    }

    std::pair<DWORD, std::string> coverageError(const char* file)
    {
        DWORD errorClass = 99;
        char text[1000];
        EXPECT_EQ(S_OK, coverage->GetLastError(file, 0, &errorClass, text, sizeof text));
        return {errorClass, text};
    }

    std::string fileText(const std::string& name)
    {
        std::ifstream in(dir.path() / name, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

    OrbelIDE3* ide = nullptr;
    OrbelCoverage* coverage = nullptr;
    OrbelHIL* hil = nullptr;
    std::shared_ptr<Instance> instance;
};

struct DocumentCall {
    DWORD flags;
    const char* file;
    const char* text;
    DWORD number;
    HRESULT result;
    const char* message; ///< of Orbel::GetLastError; null for a success
};

TEST_F(AnalyzerAdapterTest, DocumentFlagWordsActOnTheDocumentsAndAnswerTheirCodes)
{
    const DocumentCall calls[] = {
        {0x09, "missing.trd", nullptr, 0, ORBEL_E_FILE_NOT_FOUND, nullptr},
        {0xA100000D, "t.trd", nullptr, 0, S_OK, nullptr},      // analyzer, "w"
        {0x20000000, "t.trd", nullptr, 0, S_FALSE, nullptr},   // stop: not recording
        {0x30000000, "t.trd", nullptr, 0, S_FALSE, nullptr},   // is active: no
        {0x10000000, "t.trd", nullptr, 0, S_OK, nullptr},      // start
        {0x30000000, "t.trd", nullptr, 0, S_OK, nullptr},      // is active: yes
        {0x20000000, "t.trd", nullptr, 0, S_OK, nullptr},      // stop
        {0x50000000, "t.trd", "Nope", 0, ORBEL_E_ERROR,
         "OrbelIDE::Document: analyzer document 't.trd' has no trigger 'Nope' (it has Trigger0)"},
        {0x50000000, "t.trd", nullptr, 0, ORBEL_E_ERROR, "OrbelIDE::Document: no trigger name given"},
        {0x50000000, "t.trd", "Trigger0", 0, S_OK, nullptr},
        {0x80000000, "t.trd", "CSV", 0, S_OK, nullptr},
        {0x60000000, "t.trd", "t.csv", 0xFFFFFFFF, S_OK, nullptr},
        {0x00010000, "t.trd", nullptr, 5, S_OK, nullptr},      // set marker
        {0x00040000, "t.trd", nullptr, 1, S_OK, nullptr},      // focus
        {0x05, "t.trd", nullptr, 0, ORBEL_E_NOT_AVAILABLE,
         "OrbelIDE::Document: saving as with a prompt needs a user interface, which this Quillon has not"},
        {0x90000000, "t.trd", nullptr, 0, ORBEL_E_ERROR, "OrbelIDE::Document: unknown document flag word 0x90000000"},
        {0x0400000D, "t.trd", nullptr, 0, ORBEL_E_ERROR, "OrbelIDE::Document: unknown document flag word 0x0400000D"},
        {0x0200000D, "t.trd", nullptr, 0, ORBEL_E_ERROR,
         "OrbelIDE::Document: analyzer document 't.trd' is open already, so it cannot be opened as a coverage "
         "document"},
        {0xA200000D, "c.trd", nullptr, 0, S_OK, nullptr},      // coverage, "w"
        {0x60000000, "c.trd", "c.xml", 6, S_OK, nullptr},      // export as XML2
        {0x03, "t.trd", nullptr, 0, S_OK, nullptr},            // save
        {0x0B, "t.trd", nullptr, 0, S_OK, nullptr},            // close, discarding
        {0x10000000, "t.trd", nullptr, 0, ORBEL_E_ERROR, "OrbelIDE::Document: document 't.trd' is not open"},
        {0x0A, nullptr, nullptr, 0, ORBEL_E_FILE_NOT_FOUND, "OrbelIDE::Document: no untitled document is open"},
        {0x09, "t.trd", nullptr, 0, S_OK, nullptr},            // "u": the saved one
        {0x02, "", nullptr, 0, S_OK, nullptr},                 // close all
    };
    for (const DocumentCall& call : calls) {
        SCOPED_TRACE(std::to_string(call.flags) + " " + (call.file ? call.file : "(null)"));
        EXPECT_EQ(call.result, document(call.flags, call.file, call.text, call.number));
        if (call.message) {
            EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string(call.message)), lastError());
        }
    }
    EXPECT_EQ(fileText("t.csv"), "index,cycle,time_ns,event,address,function,value\n") << "nothing was recorded";
    EXPECT_EQ(fileText("t.trd").rfind("quillon-document 1\nkind analyzer\n", 0), 0u);
    EXPECT_EQ(fileText("c.xml").rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<coverage2 document=\"c.trd\">\n", 0),
              0u);
}

TEST_F(AnalyzerAdapterTest, TheTerminalIsSelectedByItsOwnBits)
{
    EXPECT_EQ(ORBEL_E_ERROR, document(0x21080000, ""));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string("OrbelIDE::Document: the terminal is not open")),
              lastError());
    ASSERT_EQ(S_OK, document(0x01080009, ""));
    runFirmware();
    EXPECT_EQ(S_OK, document(0x01080004, "", "term.txt"));
    EXPECT_EQ(fileText("term.txt"), "hello\n");
    EXPECT_EQ(S_OK, document(0x21080000, ""));
    EXPECT_EQ(S_FALSE, document(0x21080000, "")) << "stopped already";
    EXPECT_EQ(S_OK, document(0x11080000, ""));
    EXPECT_EQ(ORBEL_E_ERROR, document(0x01080003, "")) << "no file of its own to save to";
    EXPECT_EQ(S_OK, document(0x01080001, ""));
}

TEST_F(AnalyzerAdapterTest, CoverageOfARunByTheStatisticsOfTheClient)
{
    ASSERT_EQ(S_OK, document(0xA200000D, "c.trd"));
    ASSERT_EQ(S_OK, coverage->SetConfiguration("c.trd", 4, "kestrix.test", 0));
    EXPECT_EQ(S_FALSE, coverage->SetConfiguration("c.trd", 4, "kestrix.test", 0)) << "it exists now";
    for (const auto& [item, value] : std::vector<std::pair<DWORD, DWORD>>{{1, 3}, {5, 3}, {2, 3}, {3, 0}}) {
        ASSERT_EQ(S_OK, coverage->SetConfiguration("c.trd", item, "", value));
    }
    ASSERT_EQ(S_OK, coverage->SetConfiguration("c.trd", 12, "classify", 0));
    ASSERT_EQ(S_OK, coverage->SetConfiguration("c.trd", 12, "count_nonzero", 0));
    ASSERT_EQ(S_OK, document(0x10000000, "c.trd"));
    runFirmware();
    ASSERT_EQ(S_OK, document(0x20000000, "c.trd"));

    // classify and count_nonzero lie next to each other: one range, c0 to 117.
    SCoverageRange ranges[4];
    DWORD count = 0;
    EXPECT_EQ(E_FAIL, coverage->GetRanges("c.trd", 1, &count, ranges, "", 0));
    EXPECT_EQ(1u, count) << "the number found";
    EXPECT_EQ(std::make_pair(DWORD(2), std::string("1 ranges found, but room for 0")), coverageError("c.trd"));
    count = 4;
    ASSERT_EQ(S_OK, coverage->GetRanges("c.trd", 1, &count, ranges, "", 0));
    ASSERT_EQ(1u, count);
    EXPECT_EQ(0xC0u, ranges[0].m_aAddress);
    EXPECT_EQ(0x117u, ranges[0].m_aEnd);

    // main called classify with 4, 0 and -5: every byte and both ways of both branches; count_nonzero as its own
    // test counts it: 42 of 44 bytes, ble one way, the two beq both ways.
    const DWORD expected[][7] = {{44, 44, 2, 2, 0, 0, 2}, {44, 42, 3, 3, 0, 1, 2}};
    const DWORD starts[] = {0xC0, 0xEC};
    for (int f = 0; f < 2; ++f) {
        for (DWORD type = 1; type <= 7; ++type) {
            DWORD value = 99;
            ASSERT_EQ(S_OK, coverage->GetStatistics("c.trd", type, starts[f], starts[f] + 43, &value));
            EXPECT_EQ(expected[f][type - 1], value) << "function " << f << " statistic " << type;
        }
    }
    BYTE bitmap[2] = {};
    ASSERT_EQ(S_OK, coverage->GetBitmap("c.trd", 0, 0xC4, 0xC5, 2, bitmap));
    EXPECT_EQ(0x1F, bitmap[0]) << "cbz: executed, taken, not taken, code, a branch";
    EXPECT_EQ(0x09, bitmap[1]);
}

struct CoverageFailure {
    std::function<HRESULT(OrbelCoverage*)> call;
    DWORD errorClass;
    const char* text;
};

TEST_F(AnalyzerAdapterTest, CoverageFailuresKeepAClassAndATextForTheDocument)
{
    ASSERT_EQ(S_OK, document(0xA200000D, "c.trd"));
    DWORD value = 0;
    BYTE bitmap[4];
    const CoverageFailure failures[] = {
        {[&](OrbelCoverage* c) { return c->GetInfo("c.trd", 9, &value); }, 1,
         "unknown coverage information 9 (1 availability, 2 kind)"},
        {[&](OrbelCoverage* c) { return c->SetConfiguration("c.trd", 12, "classify", 0); }, 25,
         "no active rangeset to include an item in; create a rangeset first"},
        {[&](OrbelCoverage* c) { return c->SetConfiguration("c.trd", 99, "", 0); }, 1,
         "unknown coverage configuration item 99 (1 to 14, 16)"},
        {[&](OrbelCoverage* c) { return c->GetBitmap("c.trd", 0, 0x100, 0x103, 3, bitmap); }, 1,
         "a bitmap of 256 to 259 has 4 bytes, not 3"},
        {[&](OrbelCoverage* c) { return c->GetStatistics("c.trd", 0, 0, 1, &value); }, 1,
         "unknown coverage statistic 0 (1 bytes, 2 bytes executed, 3 branches, 4 branches executed, 5 taken, 6 not "
         "taken, 7 both)"},
        {[&](OrbelCoverage* c) { return c->GetStatistics("c.trd", 1, 0, 1, nullptr); }, 1,
         "no place for the statistic"},
        {[&](OrbelCoverage* c) {
             DWORD count = 1;
             SCoverageRange range;
             return c->GetRanges("c.trd", 2, &count, &range, "no_such_function", 2);
         },
         2, "no function 'no_such_function' in the downloaded programs"},
        // A closed document is read from its saved file, but only an open one can change.
        {[&](OrbelCoverage* c) { return c->SetConfiguration("other.trd", 16, "", 0); }, 2,
         "document 'other.trd' is not open"},
    };
    for (const CoverageFailure& failure : failures) {
        SCOPED_TRACE(failure.text);
        EXPECT_EQ(E_FAIL, failure.call(coverage));
        const char* file = std::strstr(failure.text, "other.trd") ? "other.trd" : "c.trd";
        EXPECT_EQ(std::make_pair(failure.errorClass, std::string(failure.text)), coverageError(file));
    }
    EXPECT_EQ(S_OK, coverage->GetInfo("c.trd", 1, &value));
    EXPECT_EQ(3u, value) << "code and branch coverage";
    EXPECT_EQ(std::make_pair(DWORD(0), std::string()), coverageError("c.trd")) << "a success clears it";
    EXPECT_EQ(E_INVALIDARG, coverage->GetLastError("c.trd", 0, nullptr, nullptr, 0));
}

TEST_F(AnalyzerAdapterTest, HilReadsAndWritesChannelTexts)
{
    char buffer[64] = "";
    ASSERT_EQ(S_OK, hil->Read(0, 0, "", buffer, sizeof buffer));
    EXPECT_STREQ("Setpoint:0,Gain:2.5,Output:0", buffer);
    EXPECT_EQ(S_OK, hil->Write(0, 0, "Setpoint:12"));
    ASSERT_EQ(S_OK, hil->Read(0, 0, "Setpoint", buffer, sizeof buffer));
    EXPECT_STREQ("Setpoint:12", buffer);
    EXPECT_EQ(12u, instance->target().readWord(0x40020000)) << "the register's memory";

    struct Failure {
        std::function<HRESULT()> call;
        HRESULT result;
        std::string message;
    };
    const Failure failures[] = {
        {[&] { return hil->Read(0, 0, "Setpoint", buffer, 11); }, ORBEL_E_SIZE,
         "OrbelHIL::Read: the values need a buffer of 12 bytes, not 11"},
        {[&] { return hil->Read(0, 0, "Speed", buffer, sizeof buffer); }, ORBEL_E_BAD_ID,
         "OrbelHIL::Read: no HIL channel 'Speed' (channels: Setpoint, Gain, Output)"},
        {[&] { return hil->Write(0, 0, "Gain:high"); }, E_INVALIDARG,
         "OrbelHIL::Write: bad value 'high' for analog HIL channel 'Gain'"},
        {[&] { return hil->Write(0, 0, nullptr); }, E_INVALIDARG, "OrbelHIL::Write: no values given"},
        {[&] { return hil->GetInfo(sizeof(SHILInfo), nullptr); }, E_INVALIDARG, "OrbelHIL::GetInfo: no SHILInfo given"},
        {[&] {
             SHILInfo info;
             return hil->GetInfo(4, &info);
         },
         ORBEL_E_SIZE, "OrbelHIL::GetInfo: the record has 4 bytes, not " + std::to_string(sizeof(SHILInfo))},
    };
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.message);
        EXPECT_EQ(failure.result, failure.call());
        EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, failure.message), lastError());
    }
}

TEST_F(AnalyzerAdapterTest, TheDescriptorListsTheChannelsWithTheirTypesAndRegisters)
{
    SHILInfo info;
    ASSERT_EQ(S_OK, hil->GetInfo(sizeof info, &info));
    EXPECT_EQ(0u, info.m_dwFlags) << "not asked for";
    info.m_dwFlags = OrbelHILFlags::hiDescriptor;
    ASSERT_EQ(S_OK, hil->GetInfo(sizeof info, &info));
    ASSERT_EQ(DWORD(OrbelHILFlags::hiDescriptor), info.m_dwFlags);
    ASSERT_NE(nullptr, info.m_pIDescriptor);
    IVectorVariableDescriptors* list = info.m_pIDescriptor->VariableDescriptors();
    ASSERT_EQ(3u, list->size());
    struct Expected {
        const char* name;
        const char* info;
        DWORD address;
        DWORD type;
    };
    const Expected expected[] = {{"Setpoint", "integer at 0x40020000", 0x40020000, SType::tSigned},
                                 {"Gain", "analog at 0x40020004", 0x40020004, SType::tFloat},
                                 {"Output", "integer at 0x40020008", 0x40020008, SType::tSigned}};
    for (DWORD i = 0; i < 3; ++i) {
        IVariableDescriptor* variable = list->at(i);
        SCOPED_TRACE(expected[i].name);
        EXPECT_STREQ(expected[i].name, variable->Name());
        EXPECT_STREQ(expected[i].info, variable->Info());
        EXPECT_EQ(expected[i].address, variable->Data());
        EXPECT_EQ(0u, variable->Dimension());
        EXPECT_EQ(expected[i].type, variable->DataDescriptor()->Type());
        EXPECT_EQ(4u, variable->DataDescriptor()->Size());
        EXPECT_EQ(nullptr, variable->DataDescriptor()->Struct());
    }
    EXPECT_EQ(nullptr, list->at(3));

    SHILInfo again;
    again.m_dwFlags = OrbelHILFlags::hiDescriptor;
    ASSERT_EQ(S_OK, hil->GetInfo(sizeof again, &again));
    EXPECT_EQ(info.m_pIDescriptor, again.m_pIDescriptor) << "one descriptor for the object's life";
    void* queried = nullptr;
    ASSERT_EQ(S_OK, info.m_pIDescriptor->QueryInterface(IID_IDescriptor, &queried));
    EXPECT_EQ(static_cast<void*>(info.m_pIDescriptor), queried);
    info.m_pIDescriptor->Release();
}

TEST_F(AnalyzerAdapterTest, WithoutAnInstanceEveryInterfaceSaysNotConnected)
{
    OrbelObject* lonely = OrbelObject::create(registry);
    auto* lonelyIde = query<OrbelIDE3>(lonely, IID_OrbelIDE3);
    auto* lonelyCoverage = query<OrbelCoverage>(lonely, IID_OrbelCoverage);
    auto* lonelyHil = query<OrbelHIL>(lonely, IID_OrbelHIL);
    char buffer[16];
    DWORD value = 0;
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, lonelyIde->Document(0xA100000D, "t.trd", nullptr, 0));
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, lonelyCoverage->GetInfo("c.trd", 1, &value));
    DWORD errorClass = 0;
    char text[100];
    ASSERT_EQ(S_OK, lonelyCoverage->GetLastError("c.trd", 0, &errorClass, text, sizeof text));
    EXPECT_EQ(25u, errorClass);
    EXPECT_STREQ("not attached to a Quillon instance", text);
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, lonelyHil->Read(0, 0, "", buffer, sizeof buffer));
    EXPECT_EQ(ORBEL_E_NOT_CONNECTED, lonelyHil->Write(0, 0, "Setpoint:1"));
    for (IUnknown* unknown : std::vector<IUnknown*>{lonelyIde, lonelyCoverage, lonelyHil, lonely}) {
        unknown->Release();
    }
}

} // namespace
} // namespace quillon::com::test
