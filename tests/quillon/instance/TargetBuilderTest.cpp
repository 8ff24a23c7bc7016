#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "TempDir.h"
#include "instance/InstanceRegistry.h"
#include "instance/TargetBuilder.h"
#include "instance/WorkspaceError.h"
#include "target/MemoryArea.h"

namespace quillon {
namespace {

using target::MemoryArea;

std::string firmware(const char* name)
{
    return std::string(FIRMWARE_DIR) + "/" + name;
}

/// "name start+size access" of each area of a target, for comparing layouts at a glance.
std::vector<std::string> layoutOf(const target::Target& target)
{
    std::vector<std::string> layout;
    for (const MemoryArea& area : target.memory().areas()) {
        char text[128];
        std::snprintf(text, sizeof text, "%s %08x+%x %s", area.name().c_str(), area.start(), area.size(),
                      MemoryArea::accessText(area.access()).c_str());
        layout.push_back(text);
    }
    return layout;
}

TEST(TargetBuilder, TheWorkspaceGivesCoreClockAndMemory)
{
    TempDir dir;
    const Workspace ws = Workspace::load(dir.write("ws.yaml", R"(target:
  cpu: cortex-m4
  clock: 48000000
  memory:
    - {name: sram, start: 0x20000000, size: 0x8000}
    - {name: flash, start: 0, size: 0x10000, access: rx}
    - {name: regs, start: 0x40000000, size: 0x400, access: w}
download:
  - file: missing.elf   # not read when the memory is given
)"));
    const auto target = TargetBuilder::build(ws);
    EXPECT_EQ("cortex-m4", target->cpu().name());
    EXPECT_EQ(48000000u, target->clockHz());
    EXPECT_EQ((std::vector<std::string>{"sram 20000000+8000 rwx", "flash 00000000+10000 rx", "regs 40000000+400 w"}),
              layoutOf(*target));
    // The areas exist and hold nothing yet.
    EXPECT_EQ(std::vector<std::uint8_t>(16, 0), target->readMemory(0x20007FF0, 16));
    EXPECT_EQ(0u, target->readWord(0));

    EXPECT_TRUE(TargetBuilder::build(Workspace())->memory().areas().empty()) << "no workspace, no memory";
}

TEST(TargetBuilder, DownloadFilesThatAreNoArmElfAreNamedWithTheirKeyAndLine)
{
    TempDir dir;
    dir.write("notes.txt", "not an ELF\n");
    const std::pair<const char*, const char*> cases[] = {
        {"missing.elf", "cannot open '@/missing.elf': No such file or directory"},
        {"notes.txt", "'@/notes.txt' is not an ELF file"},
        {"/bin/sh", nullptr},
    };
    for (const auto& [file, why] : cases) {
        SCOPED_TRACE(file);
        const auto path = dir.write("ws.yaml", "# derived memory\ndownload:\n  - file: " + firmware("debuginfo.elf")
                                                   + "\n  - file: " + file + "\n");
        const Workspace ws = Workspace::load(path);
        const std::string resolved = ws.downloads()[1].file.string();
        std::string expected = path.string() + ":4: download file '" + resolved + "' in 'download[1].file' cannot be used: ";
        try {
            TargetBuilder::build(ws);
            ADD_FAILURE() << "built";
        } catch (const WorkspaceError& error) {
            const std::string message = error.what();
            if (why) {
                std::string reason = why;
                reason.replace(reason.find('@'), 1, dir.path().string());
                EXPECT_EQ(expected + reason, message);
            } else {
                EXPECT_EQ(expected, message.substr(0, expected.size()));
                EXPECT_NE(std::string::npos, message.find("ELF"));
            }
        }
    }
}

TEST(TargetBuilder, ALaunchedInstanceOwnsItsTargetAndABadDownloadStartsNothing)
{
    TempDir dir;
    InstanceRegistry registry;
    InstanceRegistry::LaunchRequest request;
    request.mode = InstanceRegistry::Start;
    request.workspace = dir.write("good.yaml", "target:\n  cpu: cortex-m0\ndownload:\n  - file: " + firmware("instance_codeonly.elf") + "\n").string();
    ASSERT_TRUE(registry.launch(request).ok());
    const auto instance = registry.instances().at(0);
    EXPECT_EQ("cortex-m0", instance->target().cpu().name());
    EXPECT_EQ(0u, instance->target().readWord(0)) << "nothing is downloaded yet";
    EXPECT_EQ((std::vector<std::string>{"download0.segment0 00000000+400 rx", "ram 20010000+10000 rwx"}),
              layoutOf(instance->target()));

    request.workspace = dir.write("bad.yaml", "download:\n  - file: gone.elf\n").string();
    const auto result = registry.launch(request);
    EXPECT_EQ(InstanceRegistry::Status::BadWorkspace, result.status);
    EXPECT_EQ(request.workspace + ":2: download file '" + (dir.path() / "gone.elf").string()
                  + "' in 'download[0].file' cannot be used: cannot open '" + (dir.path() / "gone.elf").string()
                  + "': No such file or directory",
              result.message);
    EXPECT_EQ(1u, registry.instances().size());
}

} // namespace
} // namespace quillon
