#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "COrbelClientEclipse.h"
#include "ConnectionMgr.h"
#include "FakeOrbelSupport.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"

using namespace kestrix;

namespace {

typedef std::vector<std::string> Lines;

const std::string ALREADY_CONNECTED = "Orbel client is already connected! Disconnect first!";

/// A client that can be put into the in-process state, which only an outside party sets.
class InProcessClient : public COrbelClientEclipse {
public:
    void becomeInProcess() { m_state = stateInProcess; }
};

class ConnectionMgrTest : public FakeOrbelTest {
protected:
    static std::shared_ptr<ConnectionMgr> manager() { return std::make_shared<ConnectionMgr>(); }

    /// The description of an exception, without position, and its data lines.
    template <class E, class F>
    static std::pair<std::string, std::string> failure(F action)
    {
        const E e = thrownBy<E>(action);
        return {e.getDesc(), e.getData()};
    }
    /// Tells whether `text` is `prefix` followed by a decimal number.
    static bool isPrefixAndNumber(const std::string& text, const std::string& prefix)
    {
        return text.size() > prefix.size() && text.compare(0, prefix.size(), prefix) == 0 &&
               text.find_first_not_of("-0123456789", prefix.size()) == std::string::npos;
    }
};

} // namespace

TEST_F(ConnectionMgrTest, ConnectAttachesOverTcp)
{
    auto mgr = manager();
    EXPECT_FALSE(mgr->isConnected());
    mgr->connect("", 1234);
    EXPECT_TRUE(mgr->isConnected());
    mgr->disconnect(0);
    mgr->connect("10.1.1.1", 80);
    EXPECT_EQ((Lines{"Attach(NULL, 1234, code 0x11100, channel 0, pid 0)",
                     "Attach(10.1.1.1, 80, code 0x11100, channel 0, pid 0)"}),
              calls("Attach"));
    EXPECT_EQ(1u, calls("CreateObject").size()) << "a second connect loads nothing";

    EXPECT_EQ(ALREADY_CONNECTED, thrownBy<IllegalStateException>([&] { mgr->connect("", 1); }).getDesc());
    EXPECT_EQ(ALREADY_CONNECTED, thrownBy<IllegalStateException>([&] { mgr->connectMRU("ws.yaml"); }).getDesc());
    EXPECT_EQ(2u, calls("Attach").size());
}

TEST_F(ConnectionMgrTest, ConnectFailuresNameTheCause)
{
    script().attachResults = {ORBEL_E_CONNECT_FAILED};
    script().attachMessage = "no instance on this port";
    auto mgr = manager();
    EXPECT_EQ(std::make_pair(std::string("Can not connect to quillon over TCP/IP!"),
                             std::string("  data:\n    errorCode: 13\n    errorMsg: E:13 Can not attach to quillon: "
                                         "IP:NULL TCP:4321, Result:80040000:no instance on this port\n\n"
                                         "    address: NULL\n    tcpPort: 4321\n")),
              failure<IOException>([&] { mgr->connect("", 4321); }));
    EXPECT_FALSE(mgr->isConnected());

    auto unloadable = std::make_shared<ConnectionMgr>("/nonexistent/liborbel.so");
    const auto load = failure<IOException>([&] { unloadable->connect("host", 1); });
    EXPECT_EQ(0u, load.first.find("6: Can not load orbel DLL from path: '/nonexistent/liborbel.so'"
                                  "E:6 Can not load orbel.dll: '/nonexistent/liborbel.so'\nSystemError: '"))
        << load.first;
}

TEST_F(ConnectionMgrTest, DefaultLibraryPathIsWhatTheClientFinds)
{
    env.unset("ORBEL_PATH");
    env.set("APPDATA", "");
    auto nothingFound = manager();
    // The client's error waits for the connection to report it.
    EXPECT_EQ(0u, failure<IOException>([&] { nothingFound->connect("", 1); })
                      .first.find("6: Can not load orbel DLL from path: ''E:6 Can not load orbel.dll: 'liborbel.so'"));

    env.set("ORBEL_PATH", folder("whole") + "/");
    auto found = manager();
    found->connect("", 1);
    EXPECT_EQ(library("whole"), found->getConnection()->getDllPath());
}

TEST_F(ConnectionMgrTest, ConnectMRULaunchesWithTheWorkspace)
{
    script().launchPort = 5000;
    auto mgr = manager();
    mgr->connect("", 5000);
    mgr->disconnect();
    mgr->connectMRU("");
    EXPECT_TRUE(mgr->isConnected());
    EXPECT_EQ("NULL", seen().launch.workspace) << "an empty workspace is none";
    EXPECT_EQ(0x181u, seen().launch.flags);
    mgr->disconnect();

    script().launchResult = E_FAIL;
    EXPECT_EQ("10: Can not connect to kestrix.orbel:E:10 Can not launch quillon: ID:NULL Workspace:bad.yaml\n",
              failure<IOException>([&] { mgr->connectMRU("bad.yaml"); }).first);
    EXPECT_FALSE(mgr->isConnected());

    // The failed launch unloaded the library; a connection loads it again.
    script().launchResult = S_OK;
    mgr->connect("", 5000);
    EXPECT_TRUE(mgr->isConnected());
}

TEST_F(ConnectionMgrTest, DisconnectDetachesAndKeepsTheLibrary)
{
    auto mgr = manager();
    mgr->disconnect(5);
    EXPECT_TRUE(calls("Detach").empty()) << "not connected: nothing to detach";

    mgr->connect("", 1);
    mgr->disconnect(3);
    EXPECT_FALSE(mgr->isConnected());
    EXPECT_FALSE(mgr->getConnection()->isAttached());
    EXPECT_EQ(COrbelClient::stateLoaded, mgr->getConnection()->getState());
    mgr->connect("", 1);
    EXPECT_EQ((Lines{"Detach(3)"}), calls("Detach"));
    EXPECT_EQ(1u, calls("CreateObject").size());

    mgr.reset();
    EXPECT_EQ((Lines{"Detach(3)", "Detach(0)"}), calls("Detach")) << "the destructor disconnects";
    EXPECT_EQ(0, seen().references) << "and releases the library";
}

TEST_F(ConnectionMgrTest, DiscoveryFlagsAndRequest)
{
    CConnectionConfig config;
    config.workspace("/ws/a.yaml").instanceId("core0").cmdLineParams("-headless").udpDiscoveryPort(70000);
    config.waitTime(0x1F5).visibility(0x3FF);
    script().launchPort = 6000;
    struct Case {
        const char* name;
        std::function<int(ConnectionMgr&)> act;
        DWORD flags;
        std::string address;
    };
    const std::vector<Case> cases = {
        {"find existing", [&](ConnectionMgr& m) { return m.findExistingInstance("host", config); }, 0x3F3, "host"},
        {"start new", [&](ConnectionMgr& m) { return m.startNewInstance(config); }, 0x3F2, "NULL"},
        {"find or start", [&](ConnectionMgr& m) { return m.findOrStartInstance(config); }, 0x3F1, "NULL"},
    };
    auto mgr = manager();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(6000, c.act(*mgr));
        const fakeorbel::LaunchRequest& request = seen().launch;
        EXPECT_EQ(c.flags, request.flags);
        EXPECT_EQ(c.address, request.address);
        EXPECT_EQ("core0", request.instanceId);
        EXPECT_EQ("/ws/a.yaml", request.workspace);
        EXPECT_EQ("-headless", request.cmdLineParams);
        EXPECT_EQ(70000 & 0xFFFF, request.udpPort);
        EXPECT_FALSE(request.hasEnumerator);
    }
    EXPECT_FALSE(mgr->isConnected()) << "discovery only yields a port";

    config.useIPCDiscovery(false).waitTime(0).visibility(0).instanceId("").cmdLineParams("").workspace("");
    EXPECT_EQ(6000, mgr->findExistingInstance("", config));
    EXPECT_EQ(0x3u, seen().launch.flags);
    EXPECT_EQ("NULL", seen().launch.workspace);
    EXPECT_EQ("NULL", seen().launch.address);
    EXPECT_EQ(1u, calls("CreateObject").size());
}

TEST_F(ConnectionMgrTest, DiscoveryFailures)
{
    const CConnectionConfig config;
    const std::string configData = "    connectionConfig: " + config.toString() + "\n";
    const std::string addressData = "  data:\n    address: host\n" + configData;
    auto mgr = manager();

    script().launchResult = E_FAIL;
    EXPECT_EQ(-1, mgr->findExistingInstance("host", config)) << "nothing found is no error";
    auto started = failure<IOException>([&] { mgr->startNewInstance(config); });
    EXPECT_TRUE(isPrefixAndNumber(started.first, "Instance could not be started! ")) << started.first;
    EXPECT_EQ("  data:\n" + configData, started.second);
    auto foundOrStarted = failure<IOException>([&] { mgr->findOrStartInstance(config); });
    EXPECT_TRUE(isPrefixAndNumber(foundOrStarted.first, "Instance not found and could not be started! "))
        << foundOrStarted.first;
    EXPECT_EQ("  data:\n" + configData, foundOrStarted.second);

    const std::vector<std::pair<HRESULT, std::string>> discoveryErrors = {
        {ORBEL_E_ERROR, "Discovery could not be initiated! "},
        {ORBEL_E_BAD_ID, "Enumeration was requested, but m_pfnInstanceEnumerator is NULL! "}};
    for (const auto& error : discoveryErrors) {
        script().launchResult = error.first;
        const auto found = failure<IOException>([&] { mgr->findExistingInstance("host", config); });
        EXPECT_TRUE(isPrefixAndNumber(found.first, error.second)) << found.first;
        EXPECT_EQ(addressData, found.second);
        const auto fresh = failure<IOException>([&] { mgr->startNewInstance(config); });
        EXPECT_TRUE(isPrefixAndNumber(fresh.first, error.second)) << fresh.first;
        EXPECT_EQ("  data:\n    address: \n" + configData, fresh.second);
    }
}

TEST_F(ConnectionMgrTest, EnumerationAppendsEveryInstance)
{
    script().instances = {{"id1", "/ws/one.yaml", 6001}, {"id2", "/ws/two.yaml", 6002}};
    CConnectionConfig config;
    config.waitTime(0x20).visibility(0x300).udpDiscoveryPort(17);
    VectorQuillonInstanceInfo instances(1, QuillonInstanceInfo("kept", "id0", 1));
    auto mgr = manager();
    mgr->enumerateQuillonInstances("", config, instances);
    ASSERT_EQ(3u, instances.size());
    EXPECT_EQ("kept", instances[0].getWorkspace());
    EXPECT_EQ("/ws/one.yaml", instances[1].getWorkspace());
    EXPECT_EQ("id1", instances[1].getInstanceId());
    EXPECT_EQ(6001, instances[1].getTcpPort());
    EXPECT_EQ("/ws/two.yaml", instances[2].getWorkspace());
    EXPECT_EQ(6002, instances[2].getTcpPort());
    // Mode 4 without the visibility bits, with an enumerator.
    EXPECT_EQ(0xA4u, seen().launch.flags);
    EXPECT_TRUE(seen().launch.hasEnumerator);
    EXPECT_EQ(17, seen().launch.udpPort);

    const std::vector<std::pair<HRESULT, std::string>> errors = {
        {ORBEL_E_ERROR, "Discovery could not be initiated!"},
        {ORBEL_E_BAD_ID, "Enumeration was requested, but m_pfnInstanceEnumerator is NULL!"},
        {E_FAIL, "Enumeration failed!"}};
    for (const auto& error : errors) {
        script().launchResult = error.first;
        EXPECT_EQ(std::make_pair(error.second, "  data:\n    address: remote\n    connectionConfig: " +
                                                   config.toString() + "\n"),
                  failure<IOException>([&] { mgr->enumerateQuillonInstances("remote", config, instances); }));
    }
    EXPECT_EQ(3u, instances.size());
}

TEST_F(ConnectionMgrTest, LaunchCoreReturnsTheCoreText)
{
    auto mgr = manager();
    mgr->connect("", 1);
    script().launchCoreText = "core 2 started";
    EXPECT_EQ("core 2 started", mgr->launchCore(2));
    EXPECT_EQ((Lines{"LaunchCore(1, 2, 4100)"}), calls("LaunchCore"));

    script().launchCoreResult = ORBEL_E_NOT_AVAILABLE;
    script().lastErrorResult = ORBEL_S_MSG_FAIL;
    script().lastErrorText = "single-core target";
    EXPECT_EQ("Can not launch another core.ORBEL_E_NOT_AVAILABLE: The requested operation is not available. / "
              "single-core target:  idx = 7",
              failure<IOException>([&] { mgr->launchCore(7); }).first);

    script().missing = {"OrbelDebug2"};
    auto withoutDebug2 = manager();
    withoutDebug2->connect("", 1);
    EXPECT_EQ(0u, failure<IOException>([&] { withoutDebug2->launchCore(1); })
                      .first.find("Debug interface is not available."));
}

TEST_F(ConnectionMgrTest, LibraryVersionFromItsInfo)
{
    script().infoVersion = (9u << 27) | (10u << 22) | (98u << 12) | (5u << 2) | 0x3;
    auto mgr = manager();
    EXPECT_EQ("Can not get version info!", failure<IOException>([&] { mgr->getOrbelDllVersion(); }).first)
        << "nothing loaded yet";
    mgr->connect("", 1);
    EXPECT_EQ("9.10.98.5", mgr->getOrbelDllVersion().toString());
    script().infoVersion = 0xFFFFFFFF;
    auto maximal = manager();
    maximal->connect("", 1);
    EXPECT_EQ("31.31.1023.127", maximal->getOrbelDllVersion().toString());

    auto noInfo = std::make_shared<ConnectionMgr>(library("noinfo"));
    noInfo->connect("", 1);
    EXPECT_EQ("Can not get version info!", failure<IOException>([&] { noInfo->getOrbelDllVersion(); }).first);
}

TEST_F(ConnectionMgrTest, ServerMessagesAndWarnings)
{
    auto mgr = manager();
    EXPECT_FALSE(mgr->isWarning()) << "no library, no message";
    EXPECT_EQ("", mgr->getLastErrorMsg());
    mgr->connect("", 1);
    script().lastErrorText = "text";
    const std::vector<std::tuple<HRESULT, bool, std::string>> cases = {
        {ORBEL_S_MSG_FAIL, false, "text"}, {ORBEL_S_WARNING, true, "text"}, {S_OK, false, ""}, {E_FAIL, false, ""}};
    for (const auto& c : cases) {
        script().lastErrorResult = std::get<0>(c);
        EXPECT_EQ(std::get<1>(c), mgr->isWarning());
        EXPECT_EQ(std::get<2>(c), mgr->getLastErrorMsg());
    }
    EXPECT_EQ("GetLastError(0, 1024)", calls("GetLastError").back());
}

TEST_F(ConnectionMgrTest, ExternalClientStaysWithItsOwner)
{
    InProcessClient client;
    ASSERT_EQ(1, client.load(library("whole").c_str()));
    {
        ConnectionMgr mgr(&client, 0);
        EXPECT_EQ(&client, mgr.getConnection());
        mgr.connect("", 1);
    }
    EXPECT_TRUE(calls("Detach").empty());
    EXPECT_TRUE(client.isAttached());
    EXPECT_EQ(COrbelClient::stateLoaded, client.getState());

    // An in-process client ends by releasing its interfaces, with no detach.
    {
        ConnectionMgr mgr(&client, 0);
        mgr.connect("", 1);
        client.becomeInProcess();
        mgr.inProcessDisconnect();
        EXPECT_FALSE(mgr.isConnected());
    }
    EXPECT_EQ(COrbelClient::stateNothingLoaded, client.getState());
    EXPECT_EQ(nullptr, client.getIDE3());
    EXPECT_TRUE(calls("Detach").empty());

    EXPECT_THROW(ConnectionMgr(nullptr, 0), IllegalArgumentException);
}

TEST_F(ConnectionMgrTest, LoggedScript)
{
    const std::string path = ::testing::TempDir() + "kx_connection_log.py";
    script().launchPort = 5000;
    {
        auto mgr = manager();
        mgr->initLogger("session 1", path, CLogger::PYTHON);
        mgr->getLogger()->setTickSource([] { return 1000u; });
        EXPECT_EQ("session 1", mgr->getId());
        mgr->connect("host", 1);
        EXPECT_THROW(mgr->connect("host", 1), IllegalStateException);
        mgr->findExistingInstance("10.0.0.7", CConnectionConfig());
        mgr->startNewInstance(CConnectionConfig());
        mgr->findOrStartInstance(CConnectionConfig());
        VectorQuillonInstanceInfo instances;
        mgr->enumerateQuillonInstances("", CConnectionConfig(), instances);
        mgr->launchCore(2);
        mgr->disconnect(3);
        mgr->connectMRU("ws.yaml");
        mgr->inProcessDisconnect();
    }
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    EXPECT_EQ("connectionMgr.connect();\n"
              "connectionMgr.connect();\n"
              "connectionMgr.findExistingInstance(\"10.0.0.7\");\n"
              "connectionMgr.startNewInstance();\n"
              "connectionMgr.findOrStartInstance();\n"
              "connectionMgr.launchCore(2);\n"
              "connectionMgr.disconnect(3);\n"
              "print 'Logged script disconnected!'   # see ConnectionMgr::disconnect()\n"
              "connectionMgr.connectMRU();\n"
              "connectionMgr.inProcessDisconnect();\n"
              "# Dtor: ~ConnectionMgr\n"
              "connectionMgr.disconnect(0);\n"
              "print 'Logged script disconnected!'   # see ConnectionMgr::disconnect()\n",
              text.str());
}

TEST_F(ConnectionMgrTest, LoggerReplacedOnlyWhenTheNewOneOpens)
{
    auto mgr = manager();
    mgr->initLogger("first", ::testing::TempDir() + "kx_first_log.py", CLogger::JAVA);
    CLogger* first = mgr->getLogger();
    EXPECT_THROW(mgr->initLogger("second", "/nonexistent/dir/log.py", CLogger::PYTHON), IOException);
    EXPECT_EQ(first, mgr->getLogger());
    EXPECT_EQ("first", mgr->getId());
}
