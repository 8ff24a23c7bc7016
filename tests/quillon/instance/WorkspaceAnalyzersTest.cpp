// The workspace sections of the analyzers: the terminal's UART, trace triggers, HIL channels, and the instance
// that they give.
#include <gtest/gtest.h>

#include "TempDir.h"
#include "instance/Instance.h"
#include "instance/TargetBuilder.h"
#include "instance/Workspace.h"
#include "instance/WorkspaceError.h"

namespace quillon {
namespace {

const char* const kMemory = "target:\n"
                            "  memory:\n"
                            "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                            "    - {name: sram, start: 0x20000000, size: 0x10000}\n"
                            "    - {name: periph, start: 0x40000000, size: 0x30000, access: rw}\n";

/// The message of the error that loading the workspace and building its target throws; "" if both work.
std::string errorOf(const std::filesystem::path& file)
{
    try {
        TargetBuilder::build(Workspace::load(file));
    } catch (const WorkspaceError& error) {
        return error.what();
    }
    return "";
}

TEST(WorkspaceAnalyzers, ReadsTheTerminalTheTriggersAndTheChannels)
{
    TempDir dir;
    const Workspace ws = Workspace::load(dir.write("ws.yaml", std::string(kMemory) + R"(terminal:
  uart: 0x40011004
trace:
  triggers:
    - name: FromClassify
      start: classify
    - {name: Steps, instructions: yes}
hil:
  - {name: Setpoint, address: 0x40020000}
  - name: Gain
    kind: analog
    address: 0x40020004
    initial: 2.5
  - {name: Enable, kind: digital, address: 0x4002000C, initial: true}
)"));
    ASSERT_TRUE(ws.terminal().has_value());
    EXPECT_EQ(ws.terminal()->uart, 0x40011004u);
    EXPECT_EQ(ws.terminal()->line, 7);

    ASSERT_EQ(ws.traceTriggers().size(), 2u);
    EXPECT_EQ(ws.traceTriggers()[0].name, "FromClassify");
    EXPECT_EQ(ws.traceTriggers()[0].start, "classify");
    EXPECT_FALSE(ws.traceTriggers()[0].instructions);
    EXPECT_EQ(ws.traceTriggers()[1].start, "");
    EXPECT_TRUE(ws.traceTriggers()[1].instructions);

    struct Channel {
        const char* name;
        const char* kind;
        std::uint32_t address;
        std::optional<std::string> initial;
        int line;
    };
    const Channel expected[] = {{"Setpoint", "integer", 0x40020000, std::nullopt, 14},
                                {"Gain", "analog", 0x40020004, "2.5", 15},
                                {"Enable", "digital", 0x4002000C, "true", 19}};
    ASSERT_EQ(ws.hilChannels().size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(ws.hilChannels()[i].name, expected[i].name);
        EXPECT_EQ(ws.hilChannels()[i].kind, expected[i].kind);
        EXPECT_EQ(ws.hilChannels()[i].address, expected[i].address);
        EXPECT_EQ(ws.hilChannels()[i].initial, expected[i].initial);
        EXPECT_EQ(ws.hilChannels()[i].line, expected[i].line);
    }
}

TEST(WorkspaceAnalyzers, NoSectionsGiveNoTerminalTriggersOrChannels)
{
    TempDir dir;
    const Workspace ws = Workspace::load(dir.write("ws.yaml", "terminal:\ntrace:\nhil:\n"));
    EXPECT_FALSE(ws.terminal().has_value());
    EXPECT_TRUE(ws.traceTriggers().empty());
    EXPECT_TRUE(ws.hilChannels().empty());
}

TEST(WorkspaceAnalyzers, BadSectionsFailWithFileLineAndKey)
{
    struct BadFile {
        const char* text;
        const char* message;
    };
    const BadFile cases[] = {
        {"terminal: {}\n", "1: missing key 'uart' in 'terminal'"},
        {"terminal:\n  uart: 0x40011004\n  baud: 9600\n", "3: unknown key 'baud' in 'terminal'"},
        {"terminal:\n  uart: uart1\n", "2: bad number 'uart1' for 'terminal.uart' (decimal or 0x hex)"},
        {"trace:\n  triggers:\n    - start: main\n", "3: missing key 'name' in 'trace.triggers[0]'"},
        {"trace:\n  triggers:\n    - {name: Trigger0}\n", "3: trigger name 'Trigger0' in 'trace.triggers[0].name' is built in"},
        {"trace:\n  triggers:\n    - {name: A}\n    - {name: A}\n",
         "4: duplicate trigger name 'A' in 'trace.triggers[1].name' (first on line 3)"},
        {"trace:\n  triggers:\n    - {name: A, instructions: sometimes}\n",
         "3: bad value 'sometimes' for 'trace.triggers[0].instructions' (true or false)"},
        {"trace:\n  trigger: []\n", "2: unknown key 'trigger' in 'trace'"},
        {"hil:\n  - {name: A}\n", "2: missing key 'address' in 'hil[0]'"},
        {"hil:\n  - {name: A, address: 0x40020002}\n", "2: 'hil[0].address' must be a multiple of 4, not 0x40020002"},
        {"hil:\n  - {name: A, address: 0x40020000, kind: pwm}\n",
         "2: unknown HIL channel kind 'pwm' for 'hil[0].kind' (digital, analog, integer)"},
        {"hil:\n  - {name: A, address: 0x40020000, kind: digital, initial: 2}\n",
         "2: bad value '2' for 'hil[0].initial' (a value of kind 'digital')"},
        {"hil:\n  - {name: A, address: 0x40020000, initial: 1.5}\n",
         "2: bad value '1.5' for 'hil[0].initial' (a value of kind 'integer')"},
        {"hil:\n  - {name: A, address: 0x40020000}\n  - {name: A, address: 0x40020004}\n",
         "3: duplicate HIL channel name 'A' in 'hil[1].name' (first on line 2)"},
        {"hil: {name: A}\n", "1: 'hil' must be a list, not a map"},
    };
    TempDir dir;
    for (const BadFile& bad : cases) {
        const auto file = dir.write("ws.yaml", bad.text);
        EXPECT_EQ(errorOf(file), file.string() + ":" + bad.message) << bad.text;
    }
}

TEST(WorkspaceAnalyzers, RegistersMustLieInWritableMemory)
{
    struct BadFile {
        const char* text;
        const char* message;
    };
    const BadFile cases[] = {
        {"terminal:\n  uart: 0x50000000\n",
         "7: the terminal's UART at 0x50000000 in 'terminal.uart' lies in no writable memory area"},
        {"terminal:\n  uart: 0x00001000\n",
         "7: the terminal's UART at 0x00001000 in 'terminal.uart' lies in no writable memory area"},
        {"hil:\n  - {name: Out, address: 0x4002FFFC}\n  - {name: Past, address: 0x40030000}\n",
         "8: HIL channel 'Past' at 0x40030000 in 'hil[1].address' lies in no writable memory area"},
    };
    TempDir dir;
    for (const BadFile& bad : cases) {
        const auto file = dir.write("ws.yaml", std::string(kMemory) + bad.text);
        EXPECT_EQ(errorOf(file), file.string() + ":" + bad.message) << bad.text;
    }
}

TEST(WorkspaceAnalyzers, TheInstanceWritesInitialValuesAndKnowsTheTerminalAndTriggers)
{
    TempDir dir;
    const std::string firmware = std::string(FIRMWARE_DIR) + "/analyzers.elf";
    Workspace ws = Workspace::load(dir.write("ws.yaml", std::string(kMemory) + "download:\n  - file: " + firmware
                                                            + "\nterminal:\n  uart: 0x40011004\n"
                                                              "trace:\n  triggers:\n    - {name: OnNote, start: note}\n"
                                                              "hil:\n  - {name: Gain, kind: analog, address: "
                                                              "0x40020004, initial: -0.5}\n"));
    auto target = TargetBuilder::build(ws);
    Instance instance("i1", 7100, std::move(ws), "", std::move(target));
    EXPECT_EQ(instance.hil().read("Gain"), "Gain:-0.5");
    EXPECT_EQ(instance.target().readWord(0x40020004), 0xBF000000u) << "-0.5 as an IEEE single";

    instance.debug().download();
    instance.documents().open("t.trd", false, services::Document::Kind::Analyzer, true);
    instance.documents().selectTrigger("t.trd", "OnNote");
    instance.documents().openTerminal();
    instance.documents().start("t.trd");
    instance.debug().run();
    ASSERT_TRUE(instance.debug().waitUntilStopped(std::chrono::seconds(10)));
    EXPECT_EQ(instance.documents().terminalText(), "hello\n");
    const std::size_t entries = instance.documents().withTrace(
        "t.trd", [](services::TraceDocument& trace) { return trace.recording().events().size(); });
    EXPECT_EQ(entries, 8u) << "from the first entry of note on: note, classify, note, classify, note, count_nonzero, "
                              "note, note";
    instance.documents().save("t.trd");
    EXPECT_TRUE(std::filesystem::exists(dir.path() / "t.trd")) << "documents lie in the workspace's folder";
}

} // namespace
} // namespace quillon
