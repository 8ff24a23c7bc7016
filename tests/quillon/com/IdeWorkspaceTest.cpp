// OrbelIDE::Workspace on an attached instance: the commands, their answers and messages.
#include <gtest/gtest.h>

#include <string>

#include "ComFixture.h"
#include "OrbelFlags.h"
#include "OrbelHIL.h"
#include "OrbelHILFlags.h"
#include "OrbelIDE3.h"
#include "OrbelIDEFlags.h"
#include "SHILInfo.h"

namespace quillon::com::test {
namespace {

using namespace kestrix;
using F = OrbelIDEFlags;

const char* const kChannels = "hil:\n  - {name: A, address: 0x20000000}\n";

class IdeWorkspaceTest : public ComFixture {
protected:
    void SetUp() override
    {
        first = workspaceFile("first.yaml", std::string(kWorkspace) + kChannels);
        WORD port = 0;
        ASSERT_EQ(S_OK, launch(OrbelFlags::lfStartNew, first, &port));
        ASSERT_EQ(S_OK, attach(port));
        ide = query<OrbelIDE3>(object, IID_OrbelIDE3);
        ASSERT_NE(nullptr, ide);
    }
    void TearDown() override
    {
        if (ide) {
            ide->Release();
        }
    }
    std::filesystem::path currentFile() const { return registry.instances().at(0)->workspace().file(); }
    HRESULT setStopAtMain(const char* value)
    {
        SOptionValue option;
        option.m_pszStringIn = value;
        return ide->Option(F::ofModuleIDE | F::ofNameValue, "Debug", "", &option);
    }

    std::string first;
    OrbelIDE3* ide = nullptr;
};

TEST_F(IdeWorkspaceTest, ABrokenFileAnswersErrorWithTheWorkspaceMessage)
{
    const std::string broken = workspaceFile("broken.yaml", "target:\n  cpu: cortex-m3\n  speed: 3\n");
    EXPECT_EQ(ORBEL_E_ERROR, ide->Workspace(F::wsOpen, broken.c_str()));
    EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, broken + ":3: unknown key 'speed' in 'target'"), lastError());
    EXPECT_EQ(first, currentFile().string());
}

TEST_F(IdeWorkspaceTest, BadRequestsAreInvalidArguments)
{
    struct Case {
        DWORD command;
        const char* file;
        const char* message;
    };
    const Case cases[] = {
        {F::wsOpen, "", "OrbelIDE::Workspace: command 9 needs a file name"},
        {F::wsNew, nullptr, "OrbelIDE::Workspace: command 7 needs a file name"},
        {F::wsSaveAs, "", "OrbelIDE::Workspace: command 4 needs a file name"},
        {5, "x.yaml", "OrbelIDE::Workspace: unknown command 5"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(E_INVALIDARG, ide->Workspace(c.command, c.file)) << c.message;
        EXPECT_EQ(std::make_pair(ORBEL_S_MSG_FAIL, std::string(c.message)), lastError());
    }
    EXPECT_EQ(first, currentFile().string());
}

TEST_F(IdeWorkspaceTest, CommandsRunOnTheInstance)
{
    ASSERT_EQ(S_OK, setStopAtMain("StopAtMain:1"));
    const std::string copy = (dir.path() / "copies" / "copy.yaml").string();
    ASSERT_EQ(S_OK, ide->Workspace(F::wsSaveAs, copy.c_str()));
    EXPECT_EQ(copy, currentFile().string());
    ASSERT_EQ(S_OK, ide->Workspace(F::wsCloseDiscard, ""));
    EXPECT_TRUE(currentFile().empty());
    EXPECT_EQ(S_FALSE, ide->Workspace(F::wsSave, "")) << "the default workspace has no file to save to";

    ASSERT_EQ(S_OK, ide->Workspace(F::wsOpen, copy.c_str()));
    EXPECT_EQ(1u, registry.instances().at(0)->options().integer("/IDE/Debug/StopAtMain"));
    EXPECT_EQ(S_OK, launch(OrbelFlags::lfFindExisting, copy)) << "the instance is found by its new workspace";

    const std::string fresh = (dir.path() / "fresh.yaml").string();
    ASSERT_EQ(S_OK, ide->Workspace(F::wsNew, fresh.c_str()));
    EXPECT_EQ(fresh, currentFile().string());
    EXPECT_TRUE(std::filesystem::exists(fresh));
    ASSERT_EQ(S_OK, ide->Workspace(F::wsClose, ""));
    EXPECT_TRUE(currentFile().empty());
}

TEST_F(IdeWorkspaceTest, TheHilDescriptorFollowsTheWorkspace)
{
    auto* hil = query<OrbelHIL>(object, IID_OrbelHIL);
    ASSERT_NE(nullptr, hil);
    auto descriptor = [&] {
        SHILInfo info;
        info.m_dwFlags = OrbelHILFlags::hiDescriptor;
        EXPECT_EQ(S_OK, hil->GetInfo(sizeof info, &info));
        return info.m_pIDescriptor;
    };
    IDescriptor* before = descriptor();
    EXPECT_EQ(before, descriptor()) << "the same while the workspace stays";
    ASSERT_EQ(S_OK, ide->Workspace(F::wsOpen, workspaceFile("other.yaml").c_str()));
    IDescriptor* after = descriptor();
    EXPECT_NE(before, after);
    hil->Release();
}

} // namespace
} // namespace quillon::com::test
