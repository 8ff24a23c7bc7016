// Writing a workspace back: what is written loads again to the same workspace.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "TempDir.h"
#include "WorkspaceSame.h"
#include "instance/Workspace.h"
#include "instance/WorkspaceError.h"
#include "instance/WorkspaceWriter.h"

namespace quillon {
namespace {

/// Every section, with values away from their defaults, and texts that only survive when quoted.
const char* const kFull = R"(target:
  cpu: cortex-m4
  clock: 48000000
  memory:
    - {name: flash, start: 0x08000000, size: 0x80000, access: rx}
    - {name: sram, start: 0x20000000, size: 0x20000}
    - {name: periph, start: 0x40000000, size: 0x30000, access: w}
download:
  - file: build/app.elf
  - file: ../shared/lib.elf
  - file: /opt/fw/boot.elf
test:
  maxInstructions: 0x1000000000
options:
  /IDE/Debug/StopOnReset: false
  /IDE/Debug/SourcePaths: [src, "null", 'lib dir', "~"]
  /IDE/Test/MaxInstructions: 5000
terminal:
  uart: 0x40011004
trace:
  triggers:
    - {name: FromClassify, start: classify}
    - {name: Steps, instructions: yes}
    - {name: Odd, start: "null"}
hil:
  - {name: Setpoint, address: 0x40020000}
  - {name: Gain, kind: analog, address: 0x40020004, initial: 2.5}
  - {name: Enable, kind: digital, address: 0x4002000C, initial: "true"}
build:
  toolchain: clang
  sources: [main.c, drv/uart.c]
  includes: [inc]
  defines: [NDEBUG, "BAUD=9600"]
  flags: [-O1, -mthumb]
  linkFlags: ["-Wl,--gc-sections", -lgcc]
  linkerScript: fw.ld
  output: out/app.elf
  files:
    drv/uart.c: {defines: [FAST], flags: [-O3]}
  custom:
    - {name: size, command: "arm-none-eabi-size out/app.elf"}
)";

std::string readText(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(WorkspaceWriter, EverySectionLoadsAgainTheSame)
{
    TempDir dir;
    Workspace original = Workspace::load(dir.write("ws/full.yaml", kFull));
    original.setFile(dir.path() / "ws" / "copy.yaml");
    WorkspaceWriter::write(original);
    const Workspace copy = Workspace::load(dir.path() / "ws" / "copy.yaml");
    expectSameWorkspace(original, copy);
    EXPECT_EQ("src\nnull\nlib dir\n~", copy.options()[1].value) << "texts that read as null stay texts";
    EXPECT_EQ("null", copy.traceTriggers()[2].start);
}

TEST(WorkspaceWriter, TheDefaultWorkspaceLoadsAgainWithEveryDefault)
{
    TempDir dir;
    Workspace defaults;
    defaults.setFile(dir.path() / "new.yaml");
    WorkspaceWriter::write(defaults);
    const Workspace loaded = Workspace::load(dir.path() / "new.yaml");
    expectSameWorkspace(Workspace(), loaded);
    EXPECT_TRUE(loaded.memoryFromDownload()) << "no memory key is written for memory derived from the downloads";
}

TEST(WorkspaceWriter, DownloadsAreWrittenRelativeToTheNewFolder)
{
    TempDir dir;
    Workspace ws = Workspace::load(dir.write("a/ws.yaml", "download:\n  - file: fw/app.elf\n  - file: /opt/boot.elf\n"));
    ws.setFile(dir.path() / "b" / "c" / "moved.yaml");
    WorkspaceWriter::write(ws);
    const std::string text = readText(dir.path() / "b" / "c" / "moved.yaml");
    EXPECT_NE(std::string::npos, text.find("file: ../../a/fw/app.elf")) << text;
    EXPECT_NE(std::string::npos, text.find("file: /opt/boot.elf")) << "nothing but the root in common: absolute";
    const Workspace moved = Workspace::load(dir.path() / "b" / "c" / "moved.yaml");
    EXPECT_EQ(dir.path() / "a" / "fw" / "app.elf", moved.downloads()[0].file);
    EXPECT_EQ(std::filesystem::path("/opt/boot.elf"), moved.downloads()[1].file);
}

TEST(WorkspaceWriter, AFileThatCannotBeWrittenIsNamed)
{
    TempDir dir;
    dir.write("blocker", "a file where a folder is to be");
    Workspace ws;
    ws.setFile(dir.path() / "blocker" / "ws.yaml");
    try {
        WorkspaceWriter::write(ws);
        FAIL() << "written below a file";
    } catch (const WorkspaceError& error) {
        const std::string prefix = (dir.path() / "blocker" / "ws.yaml").string() + ": cannot write workspace file: ";
        EXPECT_EQ(prefix, std::string(error.what()).substr(0, prefix.size())) << error.what();
    }
}

} // namespace
} // namespace quillon
