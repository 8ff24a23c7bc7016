// ConnectionMgr against the simulated Quillon of liborbel.so, found through ORBEL_PATH in the
// build folder as a fresh checkout finds it. Skipped while liborbel.so is not built.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "COrbelClient.h"
#include "ConnectionMgr.h"
#include "IOException.h"
#include "LiveOrbelTest.h"
#include "WrapperBase.h"

using namespace kestrix;

namespace {

const char* const WORKSPACE = "target:\n"
                              "  cpu: cortex-m3\n"
                              "  memory:\n"
                              "    - name: flash\n"
                              "      start: 0x00000000\n"
                              "      size: 0x40000\n"
                              "      access: rx\n"
                              "    - name: sram\n"
                              "      start: 0x20000000\n"
                              "      size: 0x10000\n"
                              "      access: rwx\n";

class ConnectionMgrLiveTest : public LiveOrbelTest {
protected:
    void SetUp() override
    {
        LiveOrbelTest::SetUp();
        if (IsSkipped()) {
            return;
        }
    }

    /// A workspace file with `text` in a folder of the test.
    static std::string workspace(const std::string& name, const std::string& text = WORKSPACE)
    {
        const std::string folder = ::testing::TempDir() + "kx_live_" +
                                   ::testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directories(folder);
        const std::string path = folder + "/" + name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    static std::string descOf(const std::function<void()>& action)
    {
        try {
            action();
        } catch (const IOException& e) {
            return e.getDesc();
        }
        return "nothing thrown";
    }

    static bool sameFile(const std::string& a, const std::string& b)
    {
        std::error_code error;
        return std::filesystem::equivalent(a, b, error);
    }

};

} // namespace

TEST_F(ConnectionMgrLiveTest, LaunchWithWorkspaceAndEnumerate)
{
    const std::string ws = workspace("app.yaml");
    auto mgr = std::make_shared<ConnectionMgr>();
    mgr->connectMRU(ws);
    ASSERT_TRUE(mgr->isConnected());
    EXPECT_GE(mgr->getOrbelDllVersion().getMajor(), 9);
    // Every version check of the library passes.
    WrapperBase base(mgr);
    EXPECT_NO_THROW(base.checkQuillonVersion(98));

    VectorQuillonInstanceInfo instances(1);
    mgr->enumerateQuillonInstances("", CConnectionConfig(), instances);
    ASSERT_GE(instances.size(), 2u);
    EXPECT_EQ("", instances[0].getWorkspace()) << "enumeration appends";
    bool found = false;
    for (const QuillonInstanceInfo& instance : instances) {
        found = found || (sameFile(ws, instance.getWorkspace()) && instance.getTcpPort() != 0);
    }
    EXPECT_TRUE(found) << "the launched instance is enumerated";

    // A second connectMRU on the same workspace finds that instance again.
    mgr->disconnect();
    mgr->connectMRU(ws);
    EXPECT_TRUE(mgr->isConnected());
}

TEST_F(ConnectionMgrLiveTest, AttachByPortToAStartedInstance)
{
    const std::string ws = workspace("second.yaml");
    auto starter = std::make_shared<ConnectionMgr>();
    const int port = starter->startNewInstance(CConnectionConfig().workspace(ws));
    ASSERT_GT(port, 0);
    EXPECT_EQ(port, starter->findExistingInstance("", CConnectionConfig().workspace(ws)));
    EXPECT_FALSE(starter->isConnected()) << "discovery only yields a port";

    auto mgr = std::make_shared<ConnectionMgr>();
    mgr->connect("", port);
    ASSERT_TRUE(mgr->isConnected());
    EXPECT_NO_THROW(WrapperBase{mgr});

    // Reconnecting needs no new load.
    COrbelClient* client = mgr->getConnection();
    mgr->disconnect();
    EXPECT_FALSE(mgr->isConnected());
    EXPECT_FALSE(client->isAttached());
    EXPECT_EQ(COrbelClient::stateLoaded, client->getState());
    mgr->connect("", port);
    EXPECT_TRUE(mgr->isConnected());
    EXPECT_NO_THROW(WrapperBase{mgr});
}

TEST_F(ConnectionMgrLiveTest, UnknownPortRefusedWithTheServerMessage)
{
    auto mgr = std::make_shared<ConnectionMgr>();
    try {
        mgr->connect("", 1);
        FAIL() << "connected to a port without instance";
    } catch (const IOException& e) {
        EXPECT_EQ("Can not connect to quillon over TCP/IP!", e.getDesc());
        const std::string prefix = "  data:\n    errorCode: 13\n    errorMsg: E:13 Can not attach to quillon: "
                                   "IP:NULL TCP:1, Result:";
        EXPECT_EQ(0u, e.getData().find(prefix)) << e.getData();
        // The result code in hexadecimal, then the server's own message.
        const size_t message = e.getData().find(':', prefix.size());
        ASSERT_NE(std::string::npos, message);
        EXPECT_NE('\n', e.getData()[message + 1]) << "the server names the problem: " << e.getData();
        EXPECT_NE(std::string::npos, e.getData().find("    address: NULL\n    tcpPort: 1\n"));
    }
    EXPECT_FALSE(mgr->isConnected());
    EXPECT_EQ(-1, mgr->findExistingInstance("", CConnectionConfig().workspace(workspace("never.yaml"))));
}

TEST_F(ConnectionMgrLiveTest, BadWorkspacesRefusedWithTheirMessage)
{
    struct Case {
        const char* file;
        std::string text;
        const char* named;
    };
    const std::vector<Case> cases = {
        {"yaml_error.yaml", "target:\n  cpu: [cortex-m3\n", nullptr},
        {"unknown_key.yaml", std::string(WORKSPACE) + "colour: blue\n", "colour"},
        {"bad_number.yaml", "target:\n  clock: fast\n", "clock"},
        {"overlap.yaml",
         "target:\n  memory:\n    - name: a\n      start: 0x0\n      size: 0x1000\n      access: rw\n"
         "    - name: b\n      start: 0x800\n      size: 0x1000\n      access: rw\n",
         nullptr},
    };
    auto mgr = std::make_shared<ConnectionMgr>();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const std::string path = workspace(c.file, c.text);
        const std::string desc = descOf([&] { mgr->startNewInstance(CConnectionConfig().workspace(path)); });
        EXPECT_EQ(0u, desc.find("Instance could not be started! ")) << desc;
        const std::string message = mgr->getLastErrorMsg();
        EXPECT_NE(std::string::npos, message.find(c.file)) << message;
        if (c.named != nullptr) {
            EXPECT_NE(std::string::npos, message.find(c.named)) << message;
        }
    }

    const std::string missing = ::testing::TempDir() + "kx_live_missing/none.yaml";
    EXPECT_EQ("Instance could not be started! ",
              descOf([&] { mgr->startNewInstance(CConnectionConfig().workspace(missing)); }).substr(0, 31));
    EXPECT_NE(std::string::npos, mgr->getLastErrorMsg().find("none.yaml"));
    EXPECT_EQ("10: Can not connect to kestrix.orbel:E:10 Can not launch quillon: ID:NULL Workspace:" + missing + "\n",
              descOf([&] { mgr->connectMRU(missing); }));
    EXPECT_FALSE(mgr->isConnected());
}
