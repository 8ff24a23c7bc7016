#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

#include "COrbelClientEclipse.h"
#include "FakeOrbelSupport.h"

using namespace kestrix;

namespace {

typedef std::vector<std::string> Lines;

/// A client that can be put into the in-process state, which only an outside party sets.
class InProcessClient : public COrbelClientEclipse {
public:
    void becomeInProcess() { m_state = stateInProcess; }
};

class COrbelClientTest : public FakeOrbelTest {
protected:
    /// A version log whose text is `text`, under a fresh APPDATA.
    std::string useVersionLog(const std::string& text)
    {
        env.unset("ORBEL_PATH");
        const std::string appData = tempFolder("appdata");
        std::filesystem::create_directories(appData + "/Brevar/quillon");
        writeFile(appData + "/Brevar/quillon/quillonVersionLog.log", text);
        env.set("APPDATA", appData);
        return appData;
    }

    std::string errorText(const COrbelClient& client, int* code = nullptr) const { return client.getLastError(code); }

    const std::string m_whole = library("whole");
};

} // namespace

TEST_F(COrbelClientTest, EveryErrorCodeWithItsText)
{
    const std::string missingLibrary = "/nonexistent/liborbel.so";
    dlopen(missingLibrary.c_str(), RTLD_NOW);
    const std::string systemText = dlerror();

    struct Case {
        const char* name;
        std::function<bool(InProcessClient&)> act;
        int code;
        std::string text;
    };
    const std::vector<Case> cases = {
        {"APPDATA empty",
         [&](InProcessClient& c) {
             env.unset("ORBEL_PATH");
             env.set("APPDATA", "");
             return c.findOrbelDll() != nullptr;
         },
         1, "E:1 APPDATA environment variable not found\n"},
        {"launch without a library",
         [&](InProcessClient& c) {
             env.unset("ORBEL_PATH");
             env.set("APPDATA", "");
             return c.launch("ws.yaml") != 0 || !calls("CreateObject").empty();
         },
         1, "E:1 APPDATA environment variable not found\n"},
        {"no version log",
         [&](InProcessClient& c) {
             env.unset("ORBEL_PATH");
             env.set("APPDATA", tempFolder("empty_appdata"));
             return c.findOrbelDll() != nullptr;
         },
         2, "E:2 quillonVersionLog.log can not be opened for reading\n"},
        {"only a later line has quotes",
         [&](InProcessClient& c) {
             useVersionLog("9.10.98 " + folder("whole") + "/\n9.10.97 \"" + folder("whole") + "/\"\n");
             return c.findOrbelDll() != nullptr;
         },
         3, "E:3 No valid entries found in quillonVersionLog.log\n"},
        {"logged folder without the library",
         [&](InProcessClient& c) {
             useVersionLog("9.10.98 \"/nonexistent/quillon/\"\n");
             return c.findOrbelDll() != nullptr;
         },
         4, "E:4 /nonexistent/quillon/liborbel.so file not found: errno:" + std::to_string(ENOENT) + "\n"},
        {"in-process client",
         [&](InProcessClient& c) {
             c.becomeInProcess();
             return c.load(m_whole.c_str()) != 0;
         },
         5, "E:5 In-process linking not supported\n"},
        {"library not loadable", [&](InProcessClient& c) { return c.load(missingLibrary.c_str()) != 0; }, 6,
         "E:6 Can not load orbel.dll: '" + missingLibrary + "'\nSystemError: '" + systemText + "'\n"},
        {"no orbel_CreateObject", [&](InProcessClient& c) { return c.load(library("nocreate").c_str()) != 0; }, 7,
         "E:7 orbel.dll entry point not found\n"},
        {"object not created",
         [&](InProcessClient& c) {
             script().createResult = E_FAIL;
             return c.load(m_whole.c_str()) != 0;
         },
         8, "E:8 Can not create orbel object\n"},
        {"no Orbel interface",
         [&](InProcessClient& c) {
             script().missing = {"Orbel"};
             return c.load(m_whole.c_str()) != 0;
         },
         9, "E:9 Can not obtain Orbel interface\n"},
        {"Launch failed",
         [&](InProcessClient& c) {
             script().launchResult = E_FAIL;
             return c.launch("ws.yaml") != 0;
         },
         10, "E:10 Can not launch quillon: ID:NULL Workspace:ws.yaml\n"},
        {"attach before load", [&](InProcessClient& c) { return c.attachTcp("host", 1234); }, 12,
         "E:12 Orbel interface not available\n"},
        {"TCP attach refused",
         [&](InProcessClient& c) {
             script().attachResults = {ORBEL_E_CONNECT_FAILED};
             script().attachMessage = "refused";
             return c.load(m_whole.c_str()) != 0 && c.attachTcp("10.0.0.1", 1234);
         },
         13, "E:13 Can not attach to quillon: IP:10.0.0.1 TCP:1234, Result:80040000:refused\n"},
        {"shared-memory attach refused",
         [&](InProcessClient& c) {
             script().attachResults = {ORBEL_E_NOT_AVAILABLE};
             script().attachMessage = "no such process";
             return c.load(m_whole.c_str()) != 0 && c.attachSharedMemory(77);
         },
         13, "E:13 Can not attach to quillon: Server PID:77, Result:8004000A:no such process\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        script() = fakeorbel::Script();
        env.set("ORBEL_PATH", folder("whole") + "/");
        InProcessClient client;
        EXPECT_FALSE(c.act(client));
        int code = -1;
        EXPECT_EQ(c.text, errorText(client, &code));
        EXPECT_EQ(c.code, code);
        EXPECT_EQ(c.text, client.getLastError(nullptr));
    }
}

TEST_F(COrbelClientTest, AnErrorStaysUntilAnOperationClearsIt)
{
    COrbelClientEclipse client;
    EXPECT_FALSE(client.attachTcp(nullptr, 1));
    ASSERT_EQ(1, client.load(m_whole.c_str()));
    EXPECT_EQ("E:12 Orbel interface not available\n", errorText(client)) << "load does not clear";
    EXPECT_TRUE(client.attachTcp(nullptr, 1));
    int code = -1;
    EXPECT_EQ("", errorText(client, &code));
    EXPECT_EQ(0, code);
}

TEST_F(COrbelClientTest, OrbelPathNamesTheFolderOfTheLibrary)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"/opt/quillon/", "/opt/quillon/liborbel.so"},
        {"/opt/quillon/orbel.dll", "/opt/quillon/liborbel.so"},
        {"C:\\Quillon\\bin\\orbel.dll", "C:\\Quillon\\bin\\liborbel.so"},
        {"/opt\\quillon/x", "/opt\\quillon/liborbel.so"},
        {"C:\\a/b\\c", "C:\\a/b\\liborbel.so"},
        // No separator: no folder, the bare name for the loader's search path.
        {"", "liborbel.so"},
        {"orbel.dll", "liborbel.so"},
        // Only the first 259 characters are read.
        {"/" + std::string(300, 'a') + "/", "/liborbel.so"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.first);
        env.set("ORBEL_PATH", c.first);
        COrbelClient client;
        const char* path = client.findOrbelDll();
        ASSERT_NE(nullptr, path) << errorText(client);
        EXPECT_EQ(c.second, path);
        EXPECT_EQ(c.second, client.getDllPath());
    }
}

TEST_F(COrbelClientTest, VersionLogFirstLineGivesTheFolder)
{
    const std::string folderWithSlash = folder("whole") + "/";
    struct Case {
        const char* name;
        std::string log;
        int code;
    };
    const std::vector<Case> cases = {
        {"entry with text around it", "9.10.98 \"" + folderWithSlash + "\" 2024-01-01\nrest", 0},
        {"later lines are not read", "\"" + folderWithSlash + "\" first\n\"/nonexistent/\" second\n", 0},
        {"line of 10 characters", "ab \"/qqq/\"", 3},
        {"line of 11 characters", "abc \"/qqq/\"", 4},
        {"one quote only", "9.10.98 \"" + folderWithSlash + "\n", 3},
        {"empty file", "", 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        useVersionLog(c.log);
        COrbelClient client;
        const char* path = client.findOrbelDll();
        int code = -1;
        client.getLastError(&code);
        EXPECT_EQ(c.code, code) << errorText(client);
        if (c.code == 0) {
            ASSERT_NE(nullptr, path);
            EXPECT_EQ(m_whole, path);
        } else {
            EXPECT_EQ(nullptr, path);
        }
    }
}

TEST_F(COrbelClientTest, VersionLogUnderHomeWhenAppDataIsNotSet)
{
    const std::string home = tempFolder("home");
    std::filesystem::create_directories(home + "/.config/Brevar/quillon");
    writeFile(home + "/.config/Brevar/quillon/quillonVersionLog.log", "9.10.98 \"" + folder("whole") + "/\"\n");
    env.unset("ORBEL_PATH");
    env.unset("APPDATA");
    env.set("HOME", home);
    COrbelClient client;
    const char* path = client.findOrbelDll();
    ASSERT_NE(nullptr, path) << errorText(client);
    EXPECT_EQ(m_whole, path);

    env.unset("HOME");
    int code = 0;
    EXPECT_EQ(nullptr, client.findOrbelDll());
    client.getLastError(&code);
    EXPECT_EQ(1, code);
}

TEST_F(COrbelClientTest, VersionLogFolderTooLongForThePath)
{
    const std::string longFolder = "/" + std::string(300, 'q') + "/";
    useVersionLog("9.10.98 \"" + longFolder + "\"\n");
    COrbelClient client;
    EXPECT_EQ(nullptr, client.findOrbelDll());
    EXPECT_EQ("E:4 " + longFolder + "liborbel.so file not found: errno:" + std::to_string(ENAMETOOLONG) + "\n",
              errorText(client));
    EXPECT_STREQ("", client.getDllPath());
}

TEST_F(COrbelClientTest, LoadFetchesEveryInterfaceAndUnloadReleasesThemInOrder)
{
    {
        COrbelClientEclipse client;
        ASSERT_EQ(1, client.load(m_whole.c_str())) << errorText(client);
        EXPECT_EQ((Lines{"CreateObject(CLSID_ORBEL)"}), calls("CreateObject"));
        EXPECT_EQ((Lines{"QueryInterface(Orbel)", "QueryInterface(OrbelIDE)", "QueryInterface(OrbelDebug)",
                         "QueryInterface(OrbelProfiler2)", "QueryInterface(OrbelProject)",
                         "QueryInterface(OrbelDebug2)", "QueryInterface(OrbelIDE2)", "QueryInterface(OrbelIDE3)",
                         "QueryInterface(OrbelCoverage)", "QueryInterface(OrbelTest)", "QueryInterface(OrbelHIL)",
                         "QueryInterface(OrbelBetaExtra)", "QueryInterface(OrbelEclipse)"}),
                  calls("QueryInterface"));
        // The object's first pointer is given up once its Orbel interface is held.
        EXPECT_EQ((Lines{"Release(Orbel)"}), calls("Release"));
        EXPECT_EQ((Lines{"GetInfo(8, 0)"}), calls("GetInfo"));
        EXPECT_EQ(COrbelClient::stateLoaded, client.getState());
        EXPECT_TRUE(client.isInfoValid());
        EXPECT_EQ(m_whole, client.getDllPath());
        EXPECT_EQ(13, seen().references);

        EXPECT_EQ(1, client.load("/another/liborbel.so")) << "a second load does nothing";
        EXPECT_EQ(1u, calls("CreateObject").size());
        EXPECT_EQ(m_whole, client.getDllPath());

        ASSERT_TRUE(client.attachTcp(nullptr, 1234));
        script() = fakeorbel::Script();
        const size_t before = seen().calls.size();
        client.unload();
        const Lines unloadCalls(seen().calls.begin() + static_cast<long>(before), seen().calls.end());
        EXPECT_EQ((Lines{"Release(OrbelProject)", "Release(OrbelProfiler2)", "Release(OrbelDebug)",
                         "Release(OrbelIDE)", "Release(OrbelDebug2)", "Release(OrbelIDE2)", "Release(OrbelIDE3)",
                         "Release(OrbelCoverage)", "Release(OrbelTest)", "Release(OrbelHIL)",
                         "Release(OrbelBetaExtra)", "Release(OrbelEclipse)", "Detach(0)", "Release(Orbel)"}),
                  unloadCalls);
        EXPECT_EQ(0, seen().references);
        EXPECT_EQ(COrbelClient::stateNothingLoaded, client.getState());
        EXPECT_FALSE(client.isAttached());
        EXPECT_FALSE(client.isInfoValid());
        EXPECT_EQ(nullptr, client.getIDE3());

        client.unload();
        EXPECT_EQ(unloadCalls.size(), seen().calls.size() - before) << "a second unload does nothing";
    }
}

TEST_F(COrbelClientTest, EachClassFetchesItsOwnInterfaces)
{
    const std::vector<std::pair<std::function<COrbelClient*()>, int>> cases = {
        {[] { return new COrbelClient(); }, 8},
        {[] { return new COrbelClientBeta(); }, 12},
        {[] { return new COrbelClientEclipse(); }, 13},
    };
    for (const auto& c : cases) {
        resetFake();
        std::unique_ptr<COrbelClient> client(c.first());
        ASSERT_EQ(1, client->load(m_whole.c_str()));
        EXPECT_EQ(static_cast<size_t>(c.second), calls("QueryInterface").size());
        ASSERT_TRUE(client->attachTcp(nullptr, 1));
        client.reset();
        // The destructor detaches and releases what the most derived class fetched.
        EXPECT_EQ(0, seen().references);
        EXPECT_EQ((Lines{"Detach(0)"}), calls("Detach"));
    }
}

TEST_F(COrbelClientTest, MissingInterfacesStayNull)
{
    script().missing = {"OrbelIDE3", "OrbelTest"};
    COrbelClientEclipse client;
    ASSERT_EQ(1, client.load(m_whole.c_str()));
    EXPECT_EQ(nullptr, client.getIDE3());
    EXPECT_EQ(nullptr, client.getTest());
    EXPECT_NE(nullptr, client.getIDE2());
    EXPECT_NE(nullptr, client.getHIL());
    int code = -1;
    client.getLastError(&code);
    EXPECT_EQ(0, code) << "a missing interface is reported by the gates only";
}

TEST_F(COrbelClientTest, LibraryWithoutGetInfoIsAccepted)
{
    COrbelClientEclipse client;
    ASSERT_EQ(1, client.load(library("noinfo").c_str())) << errorText(client);
    EXPECT_FALSE(client.isInfoValid());
}

TEST_F(COrbelClientTest, FailedLoadStartsOverNextTime)
{
    script().createResult = E_FAIL;
    COrbelClientEclipse client;
    EXPECT_EQ(0, client.load(m_whole.c_str()));
    EXPECT_EQ(COrbelClient::stateNothingLoaded, client.getState());
    script().createResult = S_OK;
    EXPECT_EQ(1, client.load(m_whole.c_str()));
    EXPECT_EQ(2u, calls("CreateObject").size());
}

TEST_F(COrbelClientTest, AttachSendsTheClientCodeAndChannel)
{
    COrbelClientEclipse client;
    ASSERT_EQ(1, client.load(m_whole.c_str()));
    script().attachResults = {S_FALSE};
    EXPECT_TRUE(client.attachTcp("192.168.0.2", 60000)) << "only a negative result fails";
    EXPECT_TRUE(client.attachSharedMemory(4242));
    EXPECT_EQ(S_OK, client.getAttachResult());
    EXPECT_EQ((Lines{"Attach(192.168.0.2, 60000, code 0x11100, channel 0, pid 0)",
                     "Attach(NULL, 0, code 0x11100, channel 1, pid 4242)"}),
              calls("Attach"));
}

TEST_F(COrbelClientTest, LaunchAttachesByProcessThenByPort)
{
    struct Case {
        const char* name;
        const char* pidVariable;
        const char* portVariable;
        DWORD launchPid;
        WORD launchPort;
        std::vector<HRESULT> attachResults;
        int result;
        Lines attaches;
        bool launched;
        int code;
    };
    const std::string tcp5555 = "Attach(NULL, 5555, code 0x11100, channel 0, pid 0)";
    const std::string pid42 = "Attach(NULL, 0, code 0x11100, channel 1, pid 42)";
    const std::vector<Case> cases = {
        {"process id variable beats port variable", "77", "1234", 0, 0, {}, 1,
         {"Attach(NULL, 0, code 0x11100, channel 1, pid 77)"}, false, 0},
        {"port variable", nullptr, "1234", 0, 0, {}, 1, {"Attach(NULL, 1234, code 0x11100, channel 0, pid 0)"}, false,
         0},
        {"launched instance by port", nullptr, nullptr, 0, 5555, {}, 1, {tcp5555}, true, 0},
        {"launched instance by process", nullptr, nullptr, 42, 5555, {}, 1, {pid42}, true, 0},
        {"process attach failed, port taken", nullptr, nullptr, 42, 5555, {E_FAIL}, 1, {pid42, tcp5555}, true, 0},
        {"process variable, attach failed, no port", "77", "1234", 0, 0, {E_FAIL}, 0,
         {"Attach(NULL, 0, code 0x11100, channel 1, pid 77)"}, false, 10},
        {"launch gave neither", nullptr, nullptr, 0, 0, {}, 0, {}, true, 10},
        {"port attach failed", nullptr, nullptr, 0, 5555, {E_FAIL}, 0, {tcp5555}, true, 13},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        script() = fakeorbel::Script();
        script().launchPid = c.launchPid;
        script().launchPort = c.launchPort;
        script().attachResults = c.attachResults;
        ScopedEnvironment caseEnv;
        if (c.pidVariable != nullptr) {
            caseEnv.set("ORBEL_SHAREDMEM_PID", c.pidVariable);
        }
        if (c.portVariable != nullptr) {
            caseEnv.set("ORBEL_TCP_PORT", c.portVariable);
        }
        const size_t before = seen().calls.size();
        {
            COrbelClientEclipse client;
            EXPECT_EQ(c.result, client.launch("ws.yaml"));
            int code = -1;
            client.getLastError(&code);
            EXPECT_EQ(c.code, code) << errorText(client);
            EXPECT_EQ(c.result == 1 ? COrbelClient::stateLoaded : COrbelClient::stateNothingLoaded,
                      client.getState());
            EXPECT_EQ(c.result == 1, client.isAttached());
        }
        Lines attaches;
        size_t launches = 0;
        for (size_t i = before; i < seen().calls.size(); ++i) {
            const std::string& call = seen().calls[i];
            if (call.compare(0, 7, "Attach(") == 0) {
                attaches.push_back(call);
            }
            launches += call.compare(0, 7, "Launch(") == 0 ? 1 : 0;
        }
        EXPECT_EQ(c.attaches, attaches);
        EXPECT_EQ(c.launched ? 1u : 0u, launches);
        EXPECT_EQ(0, seen().references) << "everything released";
    }
}

TEST_F(COrbelClientTest, LaunchAsksForOneInstanceWithTheWorkspace)
{
    COrbelClientEclipse client;
    script().launchPort = 1;
    ASSERT_EQ(1, client.launch("/ws/app.yaml"));
    const fakeorbel::LaunchRequest& request = seen().launch;
    EXPECT_EQ(0x181u, request.flags);
    EXPECT_EQ("/ws/app.yaml", request.workspace);
    EXPECT_EQ("NULL", request.address);
    EXPECT_EQ("NULL", request.instanceId);
    EXPECT_EQ("NULL", request.cmdLineParams);
    EXPECT_FALSE(request.hasEnumerator);

    COrbelClientEclipse other;
    script().launchResult = E_FAIL;
    EXPECT_EQ(0, other.launch(nullptr));
    EXPECT_EQ("E:10 Can not launch quillon: ID:NULL Workspace:NULL\n", errorText(other));
}

TEST_F(COrbelClientTest, InProcessClientEndsWithoutUnloading)
{
    {
        InProcessClient client;
        ASSERT_EQ(1, client.load(m_whole.c_str()));
        ASSERT_TRUE(client.attachTcp(nullptr, 1));
        client.becomeInProcess();
    }
    // The interfaces go; the session and the main interface belong to the process it runs in.
    EXPECT_EQ((Lines{"Release(Orbel)", "Release(OrbelProject)", "Release(OrbelProfiler2)", "Release(OrbelDebug)",
                     "Release(OrbelIDE)", "Release(OrbelDebug2)", "Release(OrbelIDE2)", "Release(OrbelIDE3)",
                     "Release(OrbelCoverage)", "Release(OrbelTest)", "Release(OrbelHIL)", "Release(OrbelBetaExtra)",
                     "Release(OrbelEclipse)"}),
              calls("Release"));
    EXPECT_TRUE(calls("Detach").empty());
}
