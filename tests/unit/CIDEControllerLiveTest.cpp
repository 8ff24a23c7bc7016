// The IDE controller against the simulated Quillon of liborbel.so: its options, its folder and
// the test run's option step. Skipped while liborbel.so is not built.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "CIDEController.h"
#include "CTestCase.h"
#include "CTestEnvironmentConfig.h"
#include "CTestSpecification.h"
#include "ConnectionMgr.h"
#include "Exceptions.h"
#include "LiveOrbelTest.h"

using namespace kestrix;

namespace {

const char* const WORKSPACE = "target:\n"
                              "  memory:\n"
                              "    - {name: flash, start: 0, size: 0x40000, access: rx}\n"
                              "    - {name: sram, start: 0x20000000, size: 0x10000}\n"
                              "options:\n"
                              "  /IDE/Debug/StopAtMain: 1\n";

class CIDEControllerLiveTest : public LiveOrbelTest {
protected:
    void SetUp() override
    {
        LiveOrbelTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        folder = testFolder("kx_ide_live_");
        workspace = folder + "/ws.yaml";
        std::ofstream(workspace, std::ios::binary) << WORKSPACE;
        mgr = std::make_shared<ConnectionMgr>();
        mgr->connectMRU(workspace);
    }

    std::string folder;
    std::string workspace;
    std::shared_ptr<ConnectionMgr> mgr;
};

} // namespace

TEST_F(CIDEControllerLiveTest, OptionsStartFromTheWorkspaceAndChange)
{
    CIDEController ide(mgr);
    EXPECT_EQ(1u, ide.getOptionInt("/IDE/Debug/StopAtMain"));
    EXPECT_EQ(1u, ide.getOptionInt("/IDE/Debug/StopOnReset"));
    ide.setOption("/IDE/Debug/StopOnReset", std::string("false"));
    EXPECT_EQ(0u, ide.getOptionInt(0, "Debug", "StopOnReset"));
    ide.setOption("/IDE/Test/MaxInstructions", DWORD(5000));
    EXPECT_EQ("5000", ide.getOptionStr("/IDE/Test/MaxInstructions"));
    EXPECT_EQ(5000.0, ide.getOptionFloat("/IDE/Test/MaxInstructions"));

    ide.addDynamicOption("/IDE/Debug/SourcePaths", 0);
    ide.setOption(0, "Debug", "SourcePaths[0]", std::string("src"));
    EXPECT_EQ(1u, ide.getDynamicOptionSize("/IDE/Debug/SourcePaths"));
    EXPECT_EQ("src", ide.getOptionStr("/IDE/Debug/SourcePaths"));
    ide.removeDynamicOption("/IDE/Debug/SourcePaths", 0);
    EXPECT_EQ(0u, ide.getDynamicOptionSize(0, "Debug", "SourcePaths"));
    EXPECT_NO_THROW(ide.commitOptions(0));
}

TEST_F(CIDEControllerLiveTest, UnknownPathsAndBadValuesAreNamed)
{
    CIDEController ide(mgr);
    struct Case {
        const char* url;
        const char* value;
        const char* named;
    };
    const Case cases[] = {
        {"/IDE/Debug/Nope", "1", "unknown option '/IDE/Debug/Nope'"},
        {"/Plugin/x/StopOnReset", "1", "unknown option '/Plugin/x/StopOnReset'"},
        {"/IDE/Debug/StopOnReset", "maybe", "bad value 'maybe' for option '/IDE/Debug/StopOnReset'"},
        {"/IDE/Test/MaxInstructions", "0", "bad value '0' for option '/IDE/Test/MaxInstructions' (not zero)"},
    };
    for (const Case& c : cases) {
        try {
            ide.setOption(c.url, std::string(c.value));
            ADD_FAILURE() << c.url << " was taken";
        } catch (const IOException& e) {
            EXPECT_EQ("'IDE3::Option()' command failed!", e.getDesc());
            EXPECT_NE(std::string::npos, e.getData().find(c.named)) << e.getData();
        }
    }
    EXPECT_EQ(1u, ide.getOptionInt("/IDE/Debug/StopOnReset")) << "a refused value changes nothing";
    EXPECT_THROW(ide.getOptionInt("/IDE/Debug/Nope"), IOException);
}

TEST_F(CIDEControllerLiveTest, InformationOfTheInstance)
{
    CIDEController ide(mgr);
    EXPECT_TRUE(std::filesystem::equivalent(folder, ide.getPath(0)));
    EXPECT_THROW(ide.getPath(1), IOException) << "no other folder to tell";
    EXPECT_GE(ide.getNumClients(), 1u);
    EXPECT_GE(ide.getQuillonVersion().getMajor(), 9);
    EXPECT_NO_THROW(ide.bringQuillonToTop()) << "no window: nothing to bring up";
    EXPECT_THROW(ide.activate(), IOException) << "a headless instance has no window commands";
}

TEST_F(CIDEControllerLiveTest, TestRunSetsTheOptionsOfItsSpecification)
{
    CTestCase testCase(mgr);
    auto spec = CTestSpecification::parseTestSpec("func: [f]\n"
                                                  "options:\n"
                                                  "  /IDE/Debug/StopOnReset: 0\n"
                                                  "  /IDE/Test/MaxInstructions: 0x1000\n");
    auto ide = testCase.createIDEController(spec);
    ASSERT_NE(nullptr, ide);
    testCase.setOptions(ide, spec);
    EXPECT_EQ(0u, ide->getOptionInt("/IDE/Debug/StopOnReset"));
    EXPECT_EQ(0x1000u, ide->getOptionInt("/IDE/Test/MaxInstructions"));
}

TEST_F(CIDEControllerLiveTest, EnvironmentConnectsToItsWorkspace)
{
    auto fresh = std::make_shared<ConnectionMgr>();
    CTestCase testCase(fresh);
    CTestEnvironmentConfig config;
    config.setWorkspace(workspace);
    testCase.initEnvironment(config, false);
    EXPECT_TRUE(fresh->isConnected());
    EXPECT_EQ(2u, CIDEController(fresh).getNumClients()) << "the same instance as the fixture's";
}
