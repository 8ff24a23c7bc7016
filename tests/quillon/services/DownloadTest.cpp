#include <fstream>
#include <thread>

#include "ServiceFixture.h"

namespace quillon::services {
namespace {

std::string nodebugElf()
{
    return std::string(FIRMWARE_DIR) + "/debuginfo_nodebug.elf";
}

using DownloadTest = ServiceFixture;

TEST_F(DownloadTest, DownloadWritesSegmentsAtTheirLoadAddressesAndResets)
{
    CpuStatus status = service->status();
    EXPECT_EQ(status.cause, StopCause::Reset);
    EXPECT_EQ(status.pc, elfSymbol("Reset_Handler"));
    // the vector table: initial stack pointer and the reset handler with the Thumb bit
    EXPECT_EQ(word(0), elfSymbol("_estack"));
    EXPECT_EQ(word(4), elfSymbol("Reset_Handler") | 1u);
    // .data sits in flash behind the code, for the startup code to copy; RAM is not written yet
    EXPECT_EQ(word(elfSymbol("_sidata")), 5u);
    EXPECT_EQ(word(elfSymbol("g_total")), 0u);
    EXPECT_EQ(service->programs(), std::vector<std::string>{servicesElf()});
}

TEST_F(DownloadTest, BadFilesAreErrorsThatNameThem)
{
    ServiceError missing = errorOf([&] { service->downloadFile("/no/such/firmware.elf"); });
    EXPECT_EQ(missing.kind(), ServiceError::Kind::FileNotFound);
    EXPECT_STREQ(missing.what(), "download file '/no/such/firmware.elf' not found");

    ServiceError notElf = errorOf([&] { service->downloadFile(servicesSource()); });
    EXPECT_EQ(notElf.kind(), ServiceError::Kind::BadFile);
    EXPECT_EQ(std::string(notElf.what()).rfind("download file '" + servicesSource() + "': ", 0), 0u) << notElf.what();

    // the program of the last good download stays
    EXPECT_EQ(service->programs(), std::vector<std::string>{servicesElf()});
    EXPECT_TRUE(service->findSymbol(DebugService::Functions, "tick").has_value());
}

TEST_F(DownloadTest, SegmentsOutsideTheTargetsMemoryWriteNothing)
{
    target::TargetConfig config;
    config.memory = {{"flash", 0x00010000, 0x10000, target::MemoryArea::Read | target::MemoryArea::Execute}};
    target::Target small(config);
    DebugService smallService(small, {servicesElf()});
    ServiceError error = errorOf([&] { smallService.download(); });
    EXPECT_EQ(error.kind(), ServiceError::Kind::BadFile);
    EXPECT_EQ(std::string(error.what()).rfind("download file '" + servicesElf() + "': segment at 0x00000000 (", 0), 0u)
        << error.what();
    EXPECT_NE(std::string(error.what()).find("bytes) is outside the target's memory"), std::string::npos);
    EXPECT_TRUE(smallService.programs().empty());
}

TEST_F(DownloadTest, AnEmptyConfiguredDownloadIsAnError)
{
    target::Target other(boardConfig());
    DebugService empty(other, {});
    ServiceError error = errorOf([&] { empty.download(); });
    EXPECT_EQ(error.kind(), ServiceError::Kind::InvalidArgument);
    EXPECT_STREQ(error.what(), "nothing to download: the download list is empty");
}

TEST_F(DownloadTest, AFileWithoutDebugInformationHasItsSymbolTableOnly)
{
    service->downloadFile(nodebugElf());
    EXPECT_EQ(service->programs(), std::vector<std::string>{nodebugElf()});
    auto main = service->findSymbol(DebugService::Functions, "main");
    ASSERT_TRUE(main.has_value());
    EXPECT_EQ(service->functionAt(main->address + 2), "main");
    EXPECT_FALSE(service->sourceLineAt(main->address).has_value());
    EXPECT_TRUE(service->sourceFiles().empty());
    EXPECT_FALSE(service->findSymbol(DebugService::Functions, "tick").has_value()); // the earlier program is gone
    // a function breakpoint without DWARF stops at the symbol's address
    service->setBreakpoint(BreakpointLocation::function("main"));
    service->run();
    CpuStatus status = stopped();
    EXPECT_EQ(status.cause, StopCause::Breakpoint);
    EXPECT_EQ(status.pc, main->address);
}

TEST_F(DownloadTest, SeveralFilesLoadInOrderAndTheFirstThatKnowsANameAnswers)
{
    target::Target other(boardConfig());
    DebugService both(other, {nodebugElf(), servicesElf()});
    both.download();
    EXPECT_EQ(both.programs(), (std::vector<std::string>{nodebugElf(), servicesElf()}));
    // both have main; the first file's symbol answers, the second's code lies over the first's
    auto nodebug = debuginfo::ElfImage::open(nodebugElf());
    const debuginfo::ElfImage::Symbol* nodebugMain = nodebug.findSymbol("main");
    ASSERT_NE(nodebugMain, nullptr);
    EXPECT_EQ(both.findSymbol(DebugService::Functions, "main")->address, nodebugMain->address);
    EXPECT_EQ(both.findSymbol(DebugService::Functions, "tick")->address, elfSymbol("tick"));
    EXPECT_EQ(both.status().pc, elfSymbol("Reset_Handler")); // the last vector table written
}

TEST_F(DownloadTest, DownloadListsAddGetRemoveAndClear)
{
    EXPECT_EQ(service->downloadListMember(0, false, 0)->file, servicesElf());
    EXPECT_FALSE(service->downloadListMember(0, false, 1).has_value());
    EXPECT_FALSE(service->downloadListMember(0, true, 0).has_value());

    service->addToDownloadList(1, false, nodebugElf(), "-x");
    service->addToDownloadList(1, true, servicesElf(), "");
    EXPECT_EQ(service->downloadListMember(1, false, 0)->options, "-x");
    EXPECT_EQ(service->downloadListMember(1, true, 0)->file, servicesElf());

    service->downloadFromList(1, std::size_t(0));
    EXPECT_EQ(service->programs(), std::vector<std::string>{nodebugElf()});
    service->downloadFromList(0, servicesElf());
    EXPECT_EQ(service->programs(), std::vector<std::string>{servicesElf()});

    ServiceError notListed = errorOf([&] { service->downloadFromList(0, nodebugElf()); });
    EXPECT_EQ(notListed.kind(), ServiceError::Kind::NotFound);
    EXPECT_EQ(std::string(notListed.what()), "download list 0 has no file '" + nodebugElf() + "'");
    ServiceError noIndex = errorOf([&] { service->downloadFromList(1, std::size_t(5)); });
    EXPECT_STREQ(noIndex.what(), "download list 1 has no file 5");
    ServiceError badList = errorOf([&] { service->clearDownloadList(2); });
    EXPECT_EQ(badList.kind(), ServiceError::Kind::InvalidArgument);
    EXPECT_STREQ(badList.what(), "no download list 2 (lists are 0 and 1)");

    EXPECT_FALSE(service->removeFromDownloadList(1, 3));
    EXPECT_TRUE(service->removeFromDownloadList(1, 0));
    EXPECT_FALSE(service->downloadListMember(1, false, 0).has_value());
    service->clearDownloadList(1);
    EXPECT_FALSE(service->downloadListMember(1, true, 0).has_value());
}

TEST_F(DownloadTest, ADownloadListHoldsAtMost256Files)
{
    for (std::size_t i = 0; i < DownloadLists::capacity; ++i) {
        service->addToDownloadList(1, false, "f" + std::to_string(i), "");
    }
    ServiceError full = errorOf([&] { service->addToDownloadList(1, false, "one more", ""); });
    EXPECT_EQ(full.kind(), ServiceError::Kind::Failed);
    EXPECT_STREQ(full.what(), "download list 1 is full (256 files)");
}

TEST_F(DownloadTest, DownloadStopsARunningCoreAndResetsIt)
{
    runToMain();
    setWord(elfSymbol("g_counter"), 2000);
    service->run();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    service->download();
    CpuStatus status = service->status();
    EXPECT_FALSE(status.running);
    EXPECT_EQ(status.cause, StopCause::Reset);
    EXPECT_EQ(status.pc, elfSymbol("Reset_Handler"));
    EXPECT_EQ(status.cycles, 0u);
}

TEST_F(DownloadTest, BreakpointsStayAcrossADownload)
{
    service->setBreakpoint(BreakpointLocation::function("tick"));
    service->download();
    service->run();
    EXPECT_EQ(stopped().cause, StopCause::Breakpoint);
    EXPECT_EQ(function(), "tick");
}

TEST_F(DownloadTest, CodeOffsetMovesTheSegments)
{
    target::Target other(boardConfig());
    DebugService moved(other, {});
    moved.downloadFile(nodebugElf(), 0x1000);
    auto image = debuginfo::ElfImage::open(nodebugElf());
    const auto& code = image.segments().front();
    ASSERT_GE(code.bytes.size(), 8u);
    std::vector<std::uint8_t> expected(code.bytes.begin(), code.bytes.begin() + 8);
    EXPECT_EQ(moved.readMemory(0, code.physicalAddress + 0x1000, 8, 1), expected);
    EXPECT_EQ(moved.readMemory(0, code.physicalAddress, 8, 1), std::vector<std::uint8_t>(8, 0));
}

} // namespace
} // namespace quillon::services
