// The workspace controller against the simulated Quillon of liborbel.so. Skipped while
// liborbel.so is not built.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "CIDEController.h"
#include "CWorkspaceController.h"
#include "ConnectionMgr.h"
#include "Exceptions.h"
#include "LiveOrbelTest.h"

using namespace kestrix;

namespace {

const char* const WORKSPACE = "target:\n"
                              "  memory:\n"
                              "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                              "    - {name: sram, start: 0x20000000, size: 0x10000}\n";

class CWorkspaceControllerLiveTest : public LiveOrbelTest {
protected:
    void SetUp() override
    {
        LiveOrbelTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        folder = testFolder("kx_ws_live_");
        workspace = write("ws.yaml", WORKSPACE);
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(workspace);
    }

    std::string write(const std::string& name, const std::string& text) const
    {
        const std::string path = folder + "/" + name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    std::string folder;
    std::string workspace;
    std::shared_ptr<ConnectionMgr> mgr;
};

} // namespace

TEST_F(CWorkspaceControllerLiveTest, AnOptionSurvivesSaveAndReopen)
{
    CWorkspaceController ws(mgr);
    CIDEController ide(mgr);
    const std::string second = write("second.yaml", WORKSPACE);
    EXPECT_TRUE(ws.open(second));
    ide.setOption("/IDE/Debug/StopAtMain", DWORD(1));
    ide.setOption("/IDE/Debug/SourcePaths", std::string("src"));
    ws.save();
    ws.closeDiscard();
    EXPECT_EQ(0u, ide.getOptionInt("/IDE/Debug/StopAtMain")) << "the default workspace has the default";
    EXPECT_TRUE(ws.open(second));
    EXPECT_EQ(1u, ide.getOptionInt("/IDE/Debug/StopAtMain"));
    EXPECT_EQ("src", ide.getOptionStr("/IDE/Debug/SourcePaths"));
}

TEST_F(CWorkspaceControllerLiveTest, ABrokenFileIsNamedAndTheWorkspaceStays)
{
    CWorkspaceController ws(mgr);
    CIDEController ide(mgr);
    ide.setOption("/IDE/Debug/StopOnReset", DWORD(0));
    const std::string broken = write("broken.yaml", "target:\n  cpu: cortex-m3\n  colour: blue\n");
    try {
        ws.open(broken);
        ADD_FAILURE() << "a broken file was opened";
    } catch (const IOException& e) {
        EXPECT_EQ("An error occurred when performing operation on workspace:!", e.getDesc());
        EXPECT_NE(std::string::npos, e.getData().find(broken + ":3: unknown key 'colour' in 'target'")) << e.getData();
        EXPECT_NE(std::string::npos, e.getData().find("flags: 9")) << e.getData();
    }
    EXPECT_TRUE(std::filesystem::equivalent(folder, ide.getPath(0)));
    EXPECT_EQ(0u, ide.getOptionInt("/IDE/Debug/StopOnReset")) << "the options of the open workspace stay";
}

