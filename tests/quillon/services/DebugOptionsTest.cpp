#include <chrono>

#include "ServiceFixture.h"
#include "services/OptionTree.h"

namespace quillon::services {
namespace {

class DebugOptionsTest : public ServiceFixture {
protected:
    void SetUp() override
    {
        ServiceFixture::SetUp();
        service->setOptions(&options);
    }

    std::uint32_t resetHandler() const { return word(4) & ~1u; }

    OptionTree options;
};

TEST_F(DebugOptionsTest, StopOnResetDecidesWhetherTheCoreRunsOn)
{
    service->reset();
    EXPECT_FALSE(service->status().running);
    EXPECT_EQ(service->status().pc, resetHandler());

    // The firmware runs into its own end quickly: what counts is that it left the reset handler.
    options.set(OptionTree::kStopOnReset, "0");
    service->reset();
    service->stop();
    ASSERT_TRUE(service->waitUntilStopped(std::chrono::seconds(5)));
    EXPECT_NE(service->status().pc, resetHandler());
    EXPECT_GT(service->status().cycles, 0u);
}

TEST_F(DebugOptionsTest, StopAtMainEndsADownloadInMain)
{
    service->downloadFile(servicesElf());
    EXPECT_EQ(service->status().pc, resetHandler()) << "by default a download stops at the reset handler";

    options.set(OptionTree::kStopAtMain, "1");
    service->downloadFile(servicesElf());
    CpuStatus status = service->status();
    EXPECT_FALSE(status.running);
    EXPECT_EQ(function(), "main");
    EXPECT_EQ(word(elfSymbol("g_total")), 5u) << "the startup code ran before main";
}

TEST_F(DebugOptionsTest, SourcePathsFindSourcesThatMoved)
{
    service->downloadFile(std::string(FIRMWARE_DIR) + "/services_moved.elf");
    const std::uint32_t mainAddress = service->addressesOfLine("services_test.c", lineOf("g_depth = 0;")).at(0);
    EXPECT_EQ(service->sourceLineAt(mainAddress)->file, "/moved/src/services_test.c");

    options.set(OptionTree::kSourcePaths, "/no/such/folder\n" + servicesSource().substr(0, servicesSource().rfind('/')));
    EXPECT_EQ(service->sourceLineAt(mainAddress)->file, servicesSource()) << "the first folder that has it";
    EXPECT_EQ(service->sourceLineAt(mainAddress)->line, lineOf("g_depth = 0;"));
}

} // namespace
} // namespace quillon::services
