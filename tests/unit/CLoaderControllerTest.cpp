#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "CDebugFacade.h"
#include "CLoaderController.h"
#include "ControllerTestSupport.h"
#include "Exceptions.h"

using namespace kestrix;

namespace {

class CLoaderControllerTest : public ControllerTest {
protected:
    void downloadAnswers(HRESULT hr)
    {
        answers().download = [hr](DWORD, char*, DWORD, void*, char*, DWORD) { return hr; };
    }
};

} // namespace

TEST_F(CLoaderControllerTest, ConfigurationMarksItsFields)
{
    CDownloadConfiguration config;
    EXPECT_EQ(20u, config.getSDownload()->m_dwSize);
    EXPECT_EQ(0u, config.getSDownload()->m_dwFlags);
    config.setDownloadFileFormat(1);
    config.setDownloadFileFormat(2);
    config.setMemoryArea(3);
    config.setCodeOffset(0x100);
    config.setSymbolsOffset(0x200);
    config.setRealTimeAccess(true);
    EXPECT_EQ(0x3403u, config.getSDownload()->m_dwFlags);
    EXPECT_EQ(3, config.getSDownload()->m_byMemArea);
    EXPECT_TRUE(config.isRealTimeAccess());
}

TEST_F(CLoaderControllerTest, CommandWordsOfTheDownloads)
{
    downloadAnswers(S_OK);
    answers().runControl = [](DWORD, DWORD, DWORD) { return S_FALSE; };
    CLoaderController loader(mgr());
    EXPECT_EQ(1, loader.download());
    CDownloadConfiguration config;
    config.setRealTimeAccess(true);
    config.setCodeOffset(0x40);
    EXPECT_EQ(0, loader.targetDownload(config, "fw.elf", "-v"));
    EXPECT_EQ(0, loader.targetDownload(4, "fw.hex"));
    EXPECT_EQ(0, loader.downloadFromList(1, BYTE{3}, true));
    EXPECT_EQ(0, loader.downloadFromList(0, "fw.elf", false));
    loader.addToDownloadList(0, false, "a.elf", "opt");
    loader.addToDownloadList(1, true, "b.elf", "");
    EXPECT_EQ(0, loader.removeFromDownloadList(1, 2));
    loader.clearDownloadList(0);
    EXPECT_EQ((std::vector<std::string>{
                  "OrbelDebug.RunControl(0x3, 0, 0x0)",
                  "OrbelDebug2.Download(0x10100, fw.elf, 7, {20, 0x1000, 0x40, 0x0, 0}, -v, 3)",
                  "OrbelDebug2.Download(0x100, fw.hex, 7, {20, 0x3004, 0x0, 0x0, 0}, , 1)",
                  "OrbelDebug2.Download(0x11203, NULL, 0, {20, 0x0, 0x0, 0x0, 0}, NULL, 0)",
                  "OrbelDebug2.Download(0x200, fw.elf, 7, {20, 0x0, 0x0, 0x0, 0}, NULL, 0)",
                  "OrbelDebug2.Download(0x300, a.elf, 512, {20, 0x3116, 0x0, 0x0, 0}, opt, 512)",
                  "OrbelDebug2.Download(0x21300, b.elf, 512, {20, 0x3116, 0x0, 0x0, 0}, , 512)",
                  "OrbelDebug2.Download(0x1502, , 0, {20, 0x0, 0x0, 0x0, 0}, , 0)",
                  "OrbelDebug2.Download(0x600, NULL, 0, {20, 0x0, 0x0, 0x0, 0}, NULL, 0)"}),
              debugCalls());
}

TEST_F(CLoaderControllerTest, ListTypeIsCheckedBeforeTheInterface)
{
    CLoaderController loader(mgr());
    const auto e = thrownBy<IOException>([&] { loader.clearDownloadList(2); });
    EXPECT_EQ("The 'listType' parameter contains invalid value!", e.getDesc());
    EXPECT_EQ("  data:\n    listType: 2\n", e.getData());
    EXPECT_THROW(loader.getDownloadList(7, false), IOException);
    EXPECT_TRUE(debugCalls().empty());
}

TEST_F(CLoaderControllerTest, FailuresCarryTheirItems)
{
    serverError("no such file");
    CLoaderController loader(mgr());
    downloadAnswers(S_FALSE);
    EXPECT_EQ(1, loader.targetDownload(1, "x.elf"));
    EXPECT_EQ(1, loader.removeFromDownloadList(0, 1));
    downloadAnswers(ORBEL_E_FILE_NOT_FOUND);
    const std::string code = "ORBEL_E_FILE_NOT_FOUND: File not found. / no such file";
    auto e = thrownBy<IOException>([&] { loader.downloadFromList(1, "x.elf", true); });
    EXPECT_EQ("Target download failed!", e.getDesc());
    EXPECT_EQ("  data:\n    errorCode: " + code + "\n    error: no such file\n    listType: 1\n    file: x.elf\n"
              "    isRealTime: 1\n",
              e.getData());
    e = thrownBy<IOException>([&] { loader.removeFromDownloadList(0, 4); });
    EXPECT_EQ("Remove files from download list failed!", e.getDesc());
    EXPECT_EQ("  data:\n    stdError: " + code + "\n    lastError: no such file\n    listType: 0\n    fileIndex: 4\n",
              e.getData());
    EXPECT_EQ("Get files for download failed! " + code + "no such file",
              thrownBy<IOException>([&] { loader.addToDownloadList(0, false, "x.elf", ""); }).getDesc());
    EXPECT_THROW(loader.addToDownloadList(0, false, std::string(512, 'f'), ""), IllegalArgumentException);
}

TEST_F(CLoaderControllerTest, DownloadListIsReadUntilTheEnd)
{
    std::vector<std::pair<std::string, std::string>> list = {{"a.elf", "-x"}, {"b.hex", ""}};
    answers().download = [&](DWORD command, char* file, DWORD size, void*, char* options, DWORD optionsSize) {
        const size_t index = command & 0xFF;
        if (index >= list.size()) {
            return S_FALSE;
        }
        std::snprintf(file, size, "%s", list[index].first.c_str());
        std::snprintf(options, optionsSize, "%s", list[index].second.c_str());
        return S_OK;
    };
    CLoaderController loader(mgr());
    const std::vector<DownloadListMember>& members = loader.getDownloadList(1, true);
    ASSERT_EQ(2u, members.size());
    EXPECT_EQ("b.hex", members[1].fileName);
    EXPECT_EQ("-x", members[0].options);
    EXPECT_EQ("OrbelDebug2.Download(0x21402, , 512, {20, 0x0, 0x0, 0x0, 0}, , 512)", debugCalls().back());
    list.clear();
    EXPECT_TRUE(loader.getDownloadList(0, false).empty());
    EXPECT_TRUE(members.empty()) << "the earlier result is gone";
}

TEST_F(CLoaderControllerTest, FacadeForwardsToItsMembers)
{
    startLogger();
    answers().runControl = [](DWORD, DWORD, DWORD) { return S_OK; };
    answers().getCPUStatus = [](DWORD, SCPUStatus* status) {
        status->m_byStatus = 0x21;
        return S_OK;
    };
    {
        CDebugFacade first(mgr());
        CDebugFacade second(mgr());
        EXPECT_EQ(&first.getDataController(), &first.getDataController());
        EXPECT_NE(&first.getExecutionController(), &second.getExecutionController());
        first.run(4);
        EXPECT_TRUE(first.getCPUStatus().isStopReasonBP());
        EXPECT_EQ(0, first.download());
        EXPECT_EQ(2u, loggedLines("addrCtrl = obFactory.getDebugFacade()").size());
    }
    EXPECT_EQ((std::vector<std::string>{"OrbelDebug.RunControl(0xC85, 0, 0x0)", "OrbelDebug.GetCPUStatus(0x100)",
                                        "OrbelDebug.RunControl(0x3, 0, 0x0)"}),
              debugCalls());
    for (const char* member :
         {"~CAddressController", "~CBreakpointController", "~CDataController", "~CExecutionController", "~CLoaderController"}) {
        EXPECT_EQ(2u, loggedLines(member).size()) << member;
    }
}
