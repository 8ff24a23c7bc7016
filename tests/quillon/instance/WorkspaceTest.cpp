#include <gtest/gtest.h>

#include <cstring>

#include "TempDir.h"
#include "instance/Workspace.h"
#include "instance/WorkspaceError.h"

namespace quillon {
namespace {

/// The message of the error that loading `file` throws; "" if it loads.
std::string errorOf(const std::filesystem::path& file)
{
    try {
        Workspace::load(file);
    } catch (const WorkspaceError& error) {
        return error.what();
    }
    return "";
}

TEST(Workspace, ReadsEveryKeyAndResolvesPathsAgainstItsFolder)
{
    TempDir dir;
    dir.write("ws/ws.yaml", R"(# a full workspace
target:
  cpu: cortex-m4
  clock: 0x7A12000
  memory:
    - name: flash
      start: 0
      size: 0x40000
      access: xr
    - {name: sram, start: 0x20000000, size: 65536}
    - name: regs
      start: 0xFFFFF000
      size: 0x1000
      access: w
download:
  - file: build/fw.elf
  - file: ../lib/boot.elf
  - file: /opt/fw/abs.elf
test:
  maxInstructions: 18446744073709551615
)");
    // Read through a path that takes a detour: the stored paths are canonical.
    std::filesystem::create_directories(dir.path() / "ws" / "sub");
    std::filesystem::create_directory_symlink(dir.path() / "ws", dir.path() / "link");
    const Workspace ws = Workspace::load(dir.path() / "link" / "sub" / ".." / "ws.yaml");

    EXPECT_EQ(dir.path() / "ws" / "ws.yaml", ws.file());
    EXPECT_EQ(Workspace::Cpu::CortexM4, ws.cpu());
    EXPECT_EQ(128000000u, ws.clock());
    EXPECT_EQ(UINT64_MAX, ws.maxInstructions());
    EXPECT_FALSE(ws.memoryFromDownload());

    struct Area { const char* name; std::uint32_t start, size; unsigned access; int line; };
    const Area expected[] = {
        {"flash", 0, 0x40000, Workspace::Read | Workspace::Execute, 6},
        {"sram", 0x20000000, 0x10000, Workspace::Read | Workspace::Write | Workspace::Execute, 10},
        {"regs", 0xFFFFF000, 0x1000, Workspace::Write, 11},
    };
    ASSERT_EQ(std::size(expected), ws.memory().size());
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const Workspace::MemoryArea& area = ws.memory()[i];
        EXPECT_EQ(expected[i].name, area.name);
        EXPECT_EQ(expected[i].start, area.start) << area.name;
        EXPECT_EQ(expected[i].size, area.size) << area.name;
        EXPECT_EQ(expected[i].access, area.access) << area.name;
        EXPECT_EQ(expected[i].line, area.line) << area.name;
    }
    EXPECT_EQ(0x100000000u, ws.memory()[2].end());

    ASSERT_EQ(3u, ws.downloads().size());
    EXPECT_EQ(dir.path() / "ws" / "build" / "fw.elf", ws.downloads()[0].file);
    EXPECT_EQ(dir.path() / "lib" / "boot.elf", ws.downloads()[1].file);
    EXPECT_EQ("/opt/fw/abs.elf", ws.downloads()[2].file);
    EXPECT_EQ(17, ws.downloads()[1].line);
}

TEST(Workspace, KeysNotGivenTakeTheirDefaults)
{
    const char* texts[] = {
        "",
        "{}",
        "# nothing but a comment\n",
        "~\n",
        "target:\ndownload:\ntest:\n",
        "target: {memory: []}\ndownload: []\ntest: {}\n",
        "---\ntarget:\n  memory:\n...\n",
    };
    TempDir dir;
    for (const char* text : texts) {
        const Workspace ws = Workspace::load(dir.write("ws.yaml", text));
        EXPECT_EQ(Workspace::Cpu::CortexM3, ws.cpu()) << text;
        EXPECT_EQ(16000000u, ws.clock()) << text;
        EXPECT_TRUE(ws.memory().empty()) << text;
        EXPECT_TRUE(ws.memoryFromDownload()) << text;
        EXPECT_TRUE(ws.downloads().empty()) << text;
        EXPECT_EQ(100000000u, ws.maxInstructions()) << text;
        EXPECT_EQ(dir.path() / "ws.yaml", ws.file()) << text;
    }
    const Workspace none;
    EXPECT_TRUE(none.file().empty());
    EXPECT_EQ(Workspace::Cpu::CortexM3, none.cpu());
    EXPECT_TRUE(none.memoryFromDownload());
    EXPECT_EQ(100000000u, none.maxInstructions());
}

TEST(Workspace, EachCpuNameAndLimitValueIsAccepted)
{
    TempDir dir;
    const std::pair<const char*, Workspace::Cpu> cpus[] = {
        {"cortex-m0", Workspace::Cpu::CortexM0},
        {"cortex-m3", Workspace::Cpu::CortexM3},
        {"cortex-m4", Workspace::Cpu::CortexM4},
        {"'cortex-m7'", Workspace::Cpu::CortexM7},
    };
    for (const auto& [name, cpu] : cpus) {
        const Workspace ws = Workspace::load(
            dir.write("ws.yaml", std::string("target:\n  cpu: ") + name + "\n  clock: 0xFFFFFFFF\n"));
        EXPECT_EQ(cpu, ws.cpu()) << name;
        EXPECT_EQ(0xFFFFFFFFu, ws.clock());
    }
    // Areas that touch are no overlap.
    const Workspace ws = Workspace::load(dir.write("ws.yaml", R"(target:
  memory:
    - {name: a, start: 0x1000, size: 0x1000}
    - {name: b, start: 0x2000, size: 0x1000}
    - {name: c, start: 0, size: 0x1000}
)"));
    EXPECT_EQ(3u, ws.memory().size());
}

struct BadFile {
    const char* text;
    const char* message; // behind "<file>:"
};

TEST(Workspace, BadFilesFailWithFileLineAndKey)
{
    const BadFile cases[] = {
        // structure
        {"targt: {}\n", "1: unknown key 'targt' at top level"},
        {"target:\n  cpu: cortex-m4\n  cpux: 1\n", "3: unknown key 'cpux' in 'target'"},
        {"target: {}\ntest: {}\ntarget: {}\n", "3: duplicate key 'target' at top level (first on line 1)"},
        {"test:\n  maxInstructions: 5\n  maxInstructions: 6\n",
         "3: duplicate key 'maxInstructions' in 'test' (first on line 2)"},
        {"- target\n", "1: the top level must be a map, not a list"},
        {"target: [cortex-m3]\n", "1: 'target' must be a map, not a list"},
        {"download: fw.elf\n", "1: 'download' must be a list, not a single value"},
        {"download:\n  - fw.elf\n", "2: 'download[0]' must be a map, not a single value"},
        {"target:\n  cpu: [cortex-m3]\n", "2: 'target.cpu' must be a single value, not a list"},
        {"? [a]\n: 1\n", "1: a key at top level must be a single value, not a list"},
        {"target: {}\n---\ntest: {}\n", "3: more than one YAML document"},
        // required keys and values
        {"target:\n  memory:\n    - name: ram\n      start: 0x20000000\n",
         "3: missing key 'size' in 'target.memory[0]'"},
        {"target:\n  memory:\n    - size: 0x400\n      start: 0\n", "3: missing key 'name' in 'target.memory[0]'"},
        {"download:\n  - file: a.elf\n  - {}\n", "3: missing key 'file' in 'download[1]'"},
        {"download:\n  - file:\n", "2: missing value for 'download[0].file'"},
        {"target:\n  memory:\n    - {name: '', start: 0, size: 4}\n", "3: missing value for 'target.memory[0].name'"},
        {"target:\n  clock: ~\n", "2: missing value for 'target.clock'"},
        // numbers
        {"target:\n  clock: 16MHz\n", "2: bad number '16MHz' for 'target.clock' (decimal or 0x hex)"},
        {"target:\n  clock: 0x\n", "2: bad number '0x' for 'target.clock' (decimal or 0x hex)"},
        {"target:\n  clock: 0xg1\n", "2: bad number '0xg1' for 'target.clock' (decimal or 0x hex)"},
        {"target:\n  clock: +5\n", "2: bad number '+5' for 'target.clock' (decimal or 0x hex)"},
        {"target:\n  clock: 1.5e6\n", "2: bad number '1.5e6' for 'target.clock' (decimal or 0x hex)"},
        {"target:\n  clock: 4294967296\n", "2: number '4294967296' for 'target.clock' does not fit in 32 bits"},
        {"target:\n  clock: 0\n", "2: 'target.clock' must not be zero"},
        {"test:\n  maxInstructions: 18446744073709551616\n",
         "2: number '18446744073709551616' for 'test.maxInstructions' does not fit in 64 bits"},
        {"test:\n  maxInstructions: 0x0\n", "2: 'test.maxInstructions' must not be zero"},
        // memory areas
        {"target:\n  memory:\n    - name: ram\n      start: -1\n      size: 4\n",
         "4: negative number '-1' for 'target.memory[0].start'"},
        {"target:\n  memory:\n    - name: ram\n      start: 0\n      size: 0x100000000\n",
         "5: number '0x100000000' for 'target.memory[0].size' does not fit in 32 bits"},
        {"target:\n  memory:\n    - name: ram\n      start: 0\n      size: 0\n",
         "5: 'target.memory[0].size' must not be zero"},
        {"target:\n  memory:\n    - name: top\n      start: 0xFFFFF000\n      size: 0x1400\n",
         "3: memory area 'top' in 'target.memory[0]' ends past 0xffffffff"},
        // areas lie on the target's 1 KiB pages
        {"target:\n  memory:\n    - name: ram\n      start: 0x20000100\n      size: 0x400\n",
         "4: 'target.memory[0].start' must be a multiple of 0x400, not 0x20000100"},
        {"target:\n  memory:\n    - {name: ram, start: 0x400, size: 1}\n",
         "3: 'target.memory[0].size' must be a multiple of 0x400, not 0x1"},
        {"target:\n  memory:\n    - {name: a, start: 0, size: 0x400}\n    - {name: b, start: 0x800, size: 1025}\n",
         "4: 'target.memory[1].size' must be a multiple of 0x400, not 0x401"},
        {"target:\n  memory:\n    - {name: ram, start: 0, size: 0x400, access: rwz}\n",
         "3: bad access 'rwz' for 'target.memory[0].access' (r, w, x, each at most once)"},
        {"target:\n  memory:\n    - {name: ram, start: 0, size: 0x400, access: rr}\n",
         "3: bad access 'rr' for 'target.memory[0].access' (r, w, x, each at most once)"},
        {"target:\n  memory:\n    - {name: ram, start: 0, size: 0x400, acess: rw}\n",
         "3: unknown key 'acess' in 'target.memory[0]'"},
        {"target:\n  cpu: cortex-m33\n",
         "2: unknown cpu 'cortex-m33' for 'target.cpu' (cortex-m0, cortex-m3, cortex-m4, cortex-m7)"},
        {"target:\n  cpu: Cortex-M3\n",
         "2: unknown cpu 'Cortex-M3' for 'target.cpu' (cortex-m0, cortex-m3, cortex-m4, cortex-m7)"},
        // overlapping areas name both
        {"target:\n  memory:\n"
         "    - {name: flash, start: 0, size: 0x1000}\n"
         "    - {name: sram, start: 0x20000000, size: 0x1000}\n"
         "    - {name: alias, start: 0xC00, size: 0x800}\n",
         "5: memory area 'alias' in 'target.memory[2]' overlaps 'flash' (line 3)"},
        {"target:\n  memory:\n"
         "    - {name: inner, start: 0x20000400, size: 0x400}\n"
         "    - {name: outer, start: 0x20000000, size: 0x1000}\n",
         "4: memory area 'outer' in 'target.memory[1]' overlaps 'inner' (line 3)"},
        {"target:\n  memory:\n"
         "    - {name: ram, start: 0, size: 0x400}\n"
         "    - {name: ram, start: 0x800, size: 0x400}\n",
         "4: duplicate memory area name 'ram' in 'target.memory[1]' (first on line 3)"},
    };
    TempDir dir;
    for (const BadFile& bad : cases) {
        const auto file = dir.write("ws.yaml", bad.text);
        EXPECT_EQ(file.string() + ":" + bad.message, errorOf(file)) << bad.text;
    }
}

TEST(Workspace, YamlErrorsAndUnreadableFilesNameTheFile)
{
    TempDir dir;
    // libyaml words the problem; the line is that of the fault.
    const std::pair<const char*, const char*> syntax[] = {
        {"target:\n  cpu: cortex-m3\n clock: 5\n", ":3: YAML error: "},
        {"target:\n  cpu: [cortex-m3\n", ":3: YAML error: "},
        {"target:\n  cpu: \xff\n", ":2: YAML error: "},
        {"target: {}\n---\ntest: [\n", ":4: YAML error: "},
    };
    for (const auto& [text, prefix] : syntax) {
        const auto file = dir.write("ws.yaml", text);
        const std::string message = errorOf(file);
        EXPECT_EQ(file.string() + prefix, message.substr(0, file.string().size() + std::strlen(prefix)))
            << message;
    }

    const auto missing = dir.path() / "none.yaml";
    EXPECT_EQ(missing.string() + ": cannot read workspace file: No such file or directory",
              errorOf(missing));
    EXPECT_EQ(dir.path().string() + ": cannot read workspace file: Is a directory",
              errorOf(dir.path()));
    EXPECT_EQ(": cannot read workspace file: No such file or directory", errorOf(""));
}

} // namespace
} // namespace quillon
