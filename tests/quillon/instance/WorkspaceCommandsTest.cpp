// The workspace commands of an instance: new, open, save, save as, close and close discarding.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "TempDir.h"
#include "WorkspaceSame.h"
#include "instance/Instance.h"
#include "instance/TargetBuilder.h"
#include "instance/Workspace.h"
#include "instance/WorkspaceError.h"
#include "services/OptionTree.h"

namespace quillon {
namespace {

using services::OptionTree;

const char* const kMemory = "target:\n"
                            "  memory:\n"
                            "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                            "    - {name: sram, start: 0x20000000, size: 0x10000}\n"
                            "    - {name: periph, start: 0x40000000, size: 0x30000, access: rw}\n";

std::string readText(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class WorkspaceCommands : public ::testing::Test {
protected:
    /// An instance on `text`, written as `name` in the temporary folder.
    std::unique_ptr<Instance> instanceOn(const std::string& name, const std::string& text)
    {
        Workspace ws = Workspace::load(dir.write(name, text));
        auto target = TargetBuilder::build(ws);
        return std::make_unique<Instance>("i1", 7200, std::move(ws), "", std::move(target));
    }
    std::string firmware() const { return std::string(FIRMWARE_DIR) + "/analyzers.elf"; }
    /// A workspace on the analyzers firmware with a HIL channel, a trigger and an option.
    std::string analyzersWorkspace() const
    {
        return std::string(kMemory) + "download:\n  - file: " + firmware()
               + "\noptions:\n  /IDE/Debug/StopAtMain: 1\n"
                 "trace:\n  triggers:\n    - {name: OnNote, start: note}\n"
                 "hil:\n  - {name: Gain, kind: integer, address: 0x40020004, initial: 7}\n"
                 "build:\n  sources: [main.c]\n  defines: [LEVEL=1]\n  output: out/fw.elf\n";
    }

    TempDir dir;
};

TEST_F(WorkspaceCommands, OpenReplacesWorkspaceTargetAndServices)
{
    auto instance = instanceOn("first.yaml", analyzersWorkspace());
    instance->debug().download();
    ASSERT_TRUE(instance->debug().findSymbol(0, "main").has_value());
    instance->options().set(OptionTree::kStopOnReset, "0");
    const auto second = dir.write("second.yaml", "target:\n  cpu: cortex-m0\n" + std::string(kMemory).substr(8)
                                                     + "hil:\n  - {name: Speed, address: 0x40020010, initial: 3}\n");
    instance->openWorkspace(second);
    EXPECT_EQ(second, instance->workspace().file());
    EXPECT_EQ(Workspace::Cpu::CortexM0, instance->workspace().cpu());
    EXPECT_EQ("cortex-m0", instance->target().cpu().name());
    EXPECT_EQ("Speed:3", instance->hil().read(""));
    EXPECT_TRUE(instance->options().flag(OptionTree::kStopOnReset)) << "options of the old workspace are gone";
    EXPECT_FALSE(instance->options().flag(OptionTree::kStopAtMain));
    EXPECT_FALSE(instance->debug().findSymbol(0, "main").has_value()) << "the old program went with its workspace";
}

TEST_F(WorkspaceCommands, ABrokenFileNamesKeyAndLineAndKeepsWhatWasThere)
{
    struct Case {
        const char* name;
        std::string text;
        std::string problem;
    };
    const Case cases[] = {
        {"unknown key", "target:\n  cpu: cortex-m4\n  cores: 2\n", ":3: unknown key 'cores' in 'target'"},
        {"bad number", std::string(kMemory) + "test:\n  maxInstructions: many\n",
         ":7: bad number 'many' for 'test.maxInstructions' (decimal or 0x hex)"},
        {"channel outside memory", std::string(kMemory) + "hil:\n  - {name: X, address: 0x50000000}\n",
         ":7: HIL channel 'X' at 0x50000000 in 'hil[0].address' lies in no writable memory area"},
        {"missing file", "", ": cannot read workspace file: No such file or directory"},
    };
    auto instance = instanceOn("good.yaml", analyzersWorkspace());
    const std::filesystem::path good = instance->workspace().file();
    instance->debug().download();
    const auto main = instance->debug().findSymbol(0, "main");
    ASSERT_TRUE(main.has_value());
    const std::uint32_t code = instance->target().readWord(main->address & ~1u);
    instance->options().set(OptionTree::kMaxInstructions, "1234");

    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto broken = c.text.empty() ? dir.path() / "missing.yaml" : dir.write("broken.yaml", c.text);
        try {
            instance->openWorkspace(broken);
            ADD_FAILURE() << "opened";
        } catch (const WorkspaceError& error) {
            EXPECT_EQ(broken.string() + c.problem, error.what());
        }
        EXPECT_EQ(good, instance->workspace().file());
        const auto stillThere = instance->debug().findSymbol(0, "main");
        ASSERT_TRUE(stillThere.has_value()) << "the downloaded program still answers";
        EXPECT_EQ(main->address, stillThere->address);
        EXPECT_EQ(code, instance->target().readWord(main->address & ~1u));
        EXPECT_EQ(1234u, instance->options().integer(OptionTree::kMaxInstructions));
        EXPECT_EQ("Gain:7", instance->hil().read(""));
    }
}

TEST_F(WorkspaceCommands, SaveThenReopenGivesTheSameWorkspaceAndOptionValues)
{
    auto instance = instanceOn("ws.yaml", analyzersWorkspace());
    const Workspace loaded = instance->workspace();
    instance->options().set(OptionTree::kStopOnReset, "false");
    instance->options().set(OptionTree::kSourcePaths, "src\nlib");
    instance->options().set(OptionTree::kStopAtMain, "0"); // the file says 1
    instance->build().setOption("/", "defines", "LEVEL=2");
    instance->build().addOption("main.c", "flags", "-O2");
    ASSERT_TRUE(instance->saveWorkspace());

    const Workspace saved = Workspace::load(loaded.file());
    ASSERT_EQ(3u, saved.options().size()) << "MaxInstructions is at its default: " << readText(loaded.file());
    EXPECT_EQ("/IDE/Debug/StopAtMain", saved.options()[0].path) << "the file's own options first, in its order";
    EXPECT_EQ("0", saved.options()[0].value);

    instance->options().resetAll();
    instance->openWorkspace(loaded.file());
    EXPECT_FALSE(instance->options().flag(OptionTree::kStopOnReset));
    EXPECT_EQ("src\nlib", instance->options().text(OptionTree::kSourcePaths));
    EXPECT_FALSE(instance->options().flag(OptionTree::kStopAtMain));
    EXPECT_EQ(Workspace::kDefaultMaxInstructions, instance->options().integer(OptionTree::kMaxInstructions));
    Workspace expected = loaded;
    expected.setOptions(saved.options());
    expected.setBuild(saved.build());
    expectSameWorkspace(expected, instance->workspace());
    ASSERT_TRUE(saved.build());
    EXPECT_EQ(std::vector<std::string>{"LEVEL=2"}, saved.build()->defines) << "the build options as changed";
    EXPECT_EQ(std::vector<std::string>{"-O2"}, saved.build()->files.at("main.c").flags);
}

TEST_F(WorkspaceCommands, SaveAsMovesTheWorkspaceToItsNewFile)
{
    auto instance = instanceOn("a/ws.yaml", std::string(kMemory) + "download:\n  - file: fw/app.elf\n");
    const auto moved = dir.path() / "b" / "moved.yaml";
    instance->saveWorkspaceAs(moved);
    EXPECT_EQ(moved, instance->workspace().file());
    EXPECT_NE(std::string::npos, readText(moved).find("file: ../a/fw/app.elf")) << readText(moved);
    EXPECT_EQ(dir.path() / "a" / "fw" / "app.elf", Workspace::load(moved).downloads().at(0).file);

    instance->options().set(OptionTree::kStopAtMain, "1");
    ASSERT_TRUE(instance->saveWorkspace());
    EXPECT_EQ(1u, Workspace::load(moved).options().size()) << "a save goes to the new file";
    EXPECT_TRUE(Workspace::load(dir.path() / "a" / "ws.yaml").options().empty()) << "the old file is left alone";
}

TEST_F(WorkspaceCommands, CloseSavesAndCloseDiscardDoesNot)
{
    struct Case {
        bool save;
        std::size_t optionsInFile;
    };
    for (const Case c : {Case{true, 1}, Case{false, 0}}) {
        SCOPED_TRACE(c.save ? "close" : "close discarding");
        auto instance = instanceOn("ws.yaml", kMemory);
        const auto file = instance->workspace().file();
        instance->options().set(OptionTree::kStopAtMain, "1");
        instance->closeWorkspace(c.save);
        EXPECT_EQ(c.optionsInFile, Workspace::load(file).options().size());
        EXPECT_TRUE(instance->workspace().file().empty()) << "the default workspace follows";
        EXPECT_FALSE(instance->options().flag(OptionTree::kStopAtMain));
        EXPECT_TRUE(instance->workspace().memoryFromDownload());
    }
}

TEST_F(WorkspaceCommands, NewWritesADefaultWorkspaceThatOpensAgain)
{
    auto instance = instanceOn("old.yaml", analyzersWorkspace());
    const auto fresh = dir.path() / "sub" / "fresh.yaml";
    instance->newWorkspace(fresh);
    EXPECT_EQ(fresh, instance->workspace().file());
    expectSameWorkspace(Workspace(), instance->workspace());
    expectSameWorkspace(Workspace(), Workspace::load(fresh));
    EXPECT_EQ("", instance->hil().read("")) << "the old channels went with the old workspace";
    EXPECT_EQ(1u, Workspace::load(dir.path() / "old.yaml").options().size()) << "the old workspace is not saved";
}

TEST_F(WorkspaceCommands, AWorkbenchHeldAcrossAnOpenStaysUsable)
{
    auto instance = instanceOn("ws.yaml", analyzersWorkspace());
    const std::shared_ptr<Workbench> held = instance->workbench();
    instance->openWorkspace(dir.write("other.yaml", kMemory));
    EXPECT_NE(held, instance->workbench());
    EXPECT_EQ("Gain:7", held->hil().read("")) << "what a caller holds lives until it lets go";
    EXPECT_EQ("", instance->hil().read(""));
}

} // namespace
} // namespace quillon
