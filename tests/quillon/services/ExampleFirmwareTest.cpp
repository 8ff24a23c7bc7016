#include <fstream>

#include "ServiceFixture.h"

namespace quillon::services {
namespace {

unsigned mainLineOf(const std::string& text)
{
    std::ifstream in(std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware/main.c");
    std::string line;
    for (unsigned number = 1; std::getline(in, line); ++number) {
        if (line.find(text) != std::string::npos) {
            return number;
        }
    }
    ADD_FAILURE() << "main.c has no line with '" << text << "'";
    return 0;
}

// The example firmware on the board of its workspace (flash, SRAM and the peripherals it reads).
TEST(ExampleFirmwareTest, BreaksInTheFilterAndReturnsToMainsLoop)
{
    target::TargetConfig config = boardConfig();
    config.memory.push_back({"periph", 0x40010000, 0x10000, target::MemoryArea::Read | target::MemoryArea::Write});
    target::Target target(config);
    const std::string elf = std::string(KESTRIX_SOURCE_DIR) + "/examples/firmware/build/firmware.elf";
    DebugService service(target, {elf});
    service.download();

    service.setBreakpoint(BreakpointLocation::function("filter_step"));
    service.run();
    ASSERT_TRUE(service.waitUntilStopped(std::chrono::seconds(10)));
    CpuStatus status = service.status();
    ASSERT_EQ(status.cause, StopCause::Breakpoint) << status.message;
    EXPECT_EQ(service.functionAt(status.pc), "filter_step");
    EXPECT_EQ(service.breakpoints().front().hits, 1u);

    service.runUntilReturn();
    ASSERT_TRUE(service.waitUntilStopped(std::chrono::seconds(10)));
    status = service.status();
    EXPECT_EQ(status.cause, StopCause::UntilReached);
    EXPECT_EQ(service.functionAt(status.pc), "main");
    auto line = service.sourceLineAt(status.pc);
    ASSERT_TRUE(line.has_value());
    EXPECT_EQ(line->line, mainLineOf("g_level = filter_step(")); // in the middle of the calling line

    service.stepOverLine(); // stores g_level: the next line reports it
    EXPECT_EQ(service.sourceLineAt(service.status().pc)->line, mainLineOf("report(g_level);"));
}

} // namespace
} // namespace quillon::services
