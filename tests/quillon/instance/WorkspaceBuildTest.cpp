// The workspace's build section: what it reads and the errors that name key and line.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TempDir.h"
#include "instance/Workspace.h"
#include "instance/WorkspaceError.h"

namespace quillon {
namespace {

std::string errorOf(const TempDir& dir, const std::string& text)
{
    const auto file = dir.write("ws.yaml", text);
    try {
        Workspace::load(file);
    } catch (const WorkspaceError& error) {
        return std::string(error.what()).substr(file.string().size());
    }
    return "";
}

TEST(WorkspaceBuild, ReadsEveryKey)
{
    TempDir dir;
    const Workspace ws = Workspace::load(dir.write("ws.yaml", R"(build:
  toolchain: /opt/arm/bin/arm-none-eabi-gcc
  sources: [main.c, src/uart.c]
  includes: [include]
  defines: [NDEBUG, BAUD=9600]
  flags: [-mcpu=cortex-m3, -mthumb, -O1, -g]
  linkFlags: [-nostartfiles, "-Wl,--gc-sections"]
  linkerScript: firmware.ld
  output: build/firmware.elf
  files:
    src/uart.c: {defines: [UART=2], includes: [uart], flags: [-O0]}
    main.c: {}
  custom:
    - name: size
      command: arm-none-eabi-size build/firmware.elf
    - {name: clean, command: rm -rf build}
)"));
    ASSERT_TRUE(ws.build().has_value());
    services::BuildSettings expected;
    expected.toolchain = "/opt/arm/bin/arm-none-eabi-gcc";
    expected.sources = {"main.c", "src/uart.c"};
    expected.includes = {"include"};
    expected.defines = {"NDEBUG", "BAUD=9600"};
    expected.flags = {"-mcpu=cortex-m3", "-mthumb", "-O1", "-g"};
    expected.linkFlags = {"-nostartfiles", "-Wl,--gc-sections"};
    expected.linkerScript = "firmware.ld";
    expected.output = "build/firmware.elf";
    expected.files["src/uart.c"] = {{"uart"}, {"UART=2"}, {"-O0"}};
    expected.custom = {{"size", "arm-none-eabi-size build/firmware.elf"}, {"clean", "rm -rf build"}};
    EXPECT_TRUE(expected == *ws.build()) << "a source with empty settings keeps no entry";
}

TEST(WorkspaceBuild, DefaultsAndAbsence)
{
    TempDir dir;
    EXPECT_FALSE(Workspace::load(dir.write("a.yaml", "test:\n  maxInstructions: 10\n")).build().has_value());
    EXPECT_FALSE(Workspace::load(dir.write("b.yaml", "build:\n")).build().has_value()) << "null: not given";
    const Workspace ws = Workspace::load(dir.write("c.yaml", "build:\n  sources: [a.c]\n"));
    ASSERT_TRUE(ws.build().has_value());
    EXPECT_EQ("arm-none-eabi-gcc", ws.build()->toolchain);
    EXPECT_EQ("", ws.build()->linkerScript);
    EXPECT_EQ("", ws.build()->output);
}

TEST(WorkspaceBuild, ErrorsNameKeyAndLine)
{
    TempDir dir;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"build:\n  compiler: gcc\n", ":2: unknown key 'compiler' in 'build'"},
        {"build:\n  sources: main.c\n", ":2: 'build.sources' must be a list, not a single value"},
        {"build:\n  sources: [a.c, [b.c]]\n", ":2: 'build.sources[1]' must be a single value, not a list"},
        {"build:\n  toolchain: [gcc]\n", ":2: 'build.toolchain' must be a single value, not a list"},
        {"build:\n  output: ''\n", ":2: missing value for 'build.output'"},
        {"build:\n  sources: [a.c]\n  files:\n    b.c: {defines: [X]}\n",
         ":4: 'b.c' in 'build.files' is not one of 'build.sources'"},
        {"build:\n  files:\n    a.c: {defines: [X]}\n  sources: [a.c]\n", ""},
        {"build:\n  sources: [a.c]\n  files:\n    a.c: {optimise: yes}\n", ":4: unknown key 'optimise' in 'build.files.a.c'"},
        {"build:\n  custom:\n    - name: size\n", ":3: missing key 'command' in 'build.custom[0]'"},
        {"build:\n  custom:\n    - {name: a, command: x}\n    - {name: a, command: y}\n",
         ":4: duplicate custom operation name 'a' in 'build.custom[1].name'"},
        {"build:\n  sources: [a.c]\n  sources: [b.c]\n", ":3: duplicate key 'sources' in 'build' (first on line 2)"},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(expected, errorOf(dir, text));
    }
}

} // namespace
} // namespace quillon
