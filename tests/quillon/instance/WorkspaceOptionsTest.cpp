#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "TempDir.h"
#include "instance/Instance.h"
#include "instance/TargetBuilder.h"
#include "instance/Workspace.h"
#include "instance/WorkspaceError.h"

namespace quillon {
namespace {

std::string errorOf(const std::filesystem::path& file)
{
    try {
        Workspace::load(file);
    } catch (const WorkspaceError& error) {
        return error.what();
    }
    return "";
}

TEST(WorkspaceOptions, AreReadInFileOrderWithTheirLines)
{
    TempDir dir;
    const auto file = dir.write("ws.yaml", "test:\n"
                                           "  maxInstructions: 500\n"
                                           "options:\n"
                                           "  /IDE/Debug/StopOnReset: false\n"
                                           "  /IDE/Debug/SourcePaths: [src, lib]\n"
                                           "  /IDE/Test/MaxInstructions: 0x40\n");
    const Workspace ws = Workspace::load(file);
    ASSERT_EQ(3u, ws.options().size());
    EXPECT_EQ("/IDE/Debug/StopOnReset", ws.options()[0].path);
    EXPECT_EQ("false", ws.options()[0].value);
    EXPECT_EQ(4, ws.options()[0].line);
    EXPECT_EQ("src\nlib", ws.options()[1].value);
    EXPECT_EQ(6, ws.options()[2].line);
}

TEST(WorkspaceOptions, ErrorsNameTheKeyAndLine)
{
    struct Case {
        const char* text;
        const char* problem;
    };
    const Case cases[] = {
        {"options:\n  /IDE/Debug/Nope: 1\n", ":2: unknown option '/IDE/Debug/Nope'"},
        {"options:\n  /IDE/Debug/StopOnReset: 1\n  /IDE/Debug/StopAtMain:\n    maybe\n",
         ":4: bad value 'maybe' for option '/IDE/Debug/StopAtMain' (0, 1, true or false)"},
        {"options:\n  /IDE/Debug/StopOnReset: 1\n  /IDE/Debug/StopOnReset: 0\n",
         ":3: duplicate key '/IDE/Debug/StopOnReset' in 'options' (first on line 2)"},
        {"options:\n  /IDE/Debug/StopOnReset:\n", ":2: missing value for 'options./IDE/Debug/StopOnReset'"},
        {"options: [a]\n", ":1: 'options' must be a map, not a list"},
        {"options:\n  /IDE/Debug/StopOnReset: {a: 1}\n",
         ":2: 'options./IDE/Debug/StopOnReset' must be a single value, not a map"},
    };
    TempDir dir;
    for (const Case& c : cases) {
        const auto file = dir.write("bad.yaml", c.text);
        EXPECT_EQ(file.string() + c.problem, errorOf(file)) << c.text;
    }
}

TEST(WorkspaceOptions, InstanceStartsWithTheWorkspaceOptions)
{
    TempDir dir;
    const auto file = dir.write("ws.yaml", "target:\n"
                                           "  memory:\n"
                                           "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                                           "test:\n"
                                           "  maxInstructions: 777\n"
                                           "options:\n"
                                           "  /IDE/Debug/StopAtMain: 1\n");
    Workspace ws = Workspace::load(file);
    auto target = TargetBuilder::build(ws);
    Instance instance("id", 7000, std::move(ws), "", std::move(target));
    EXPECT_TRUE(instance.options().flag(services::OptionTree::kStopAtMain));
    EXPECT_TRUE(instance.options().flag(services::OptionTree::kStopOnReset));
    EXPECT_EQ(777u, instance.options().integer(services::OptionTree::kMaxInstructions));
    instance.options().set(services::OptionTree::kMaxInstructions, "5");
    instance.options().resetAll();
    EXPECT_EQ(777u, instance.options().integer(services::OptionTree::kMaxInstructions))
        << "the workspace's limit is the default";
    EXPECT_TRUE(instance.options().flag(services::OptionTree::kStopAtMain)) << "the workspace's options are the defaults";
}

} // namespace
} // namespace quillon
