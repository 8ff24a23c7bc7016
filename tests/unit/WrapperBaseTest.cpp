#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "COrbelClient.h"
#include "ConnectionMgr.h"
#include "FakeOrbelSupport.h"
#include "IOException.h"
#include "VersionConflictException.h"
#include "WrapperBase.h"

using namespace kestrix;

namespace {

const std::string CONNECT_HINT = " Make sure that application is connected to quillon (see ConnectionMgr.connect...())!";

class WrapperBaseTest : public FakeOrbelTest {
protected:
    std::shared_ptr<ConnectionMgr> connected()
    {
        auto mgr = std::make_shared<ConnectionMgr>();
        mgr->connect("", 1234);
        return mgr;
    }
    std::string gateFailure(const std::shared_ptr<ConnectionMgr>& mgr) const
    {
        return thrownBy<IOException>([&] { WrapperBase base(mgr); }).getDesc();
    }
};

} // namespace

TEST_F(WrapperBaseTest, ConstructionAsksForTheVersion)
{
    script().major = 9;
    script().minor = 10;
    script().build = 15;
    WrapperBase base(connected());
    EXPECT_EQ((std::vector<std::string>{"GetQuillonVersion(528, 0x1)"}), calls("GetQuillonVersion"));
    // The kept version has no subbuild.
    const auto e = thrownBy<VersionConflictException>([&] { base.checkQuillonVersion(16); });
    EXPECT_EQ("  data:\n    yourVersion: 9.10.15\n    minRequiredVersion: 9.10.16\n", e.getData());
}

TEST_F(WrapperBaseTest, ConstructionFailsWithoutVersion)
{
    const std::string ide3Gate = "IDE3 interface is not available. Make sure that application is connected to quillon "
                                 "(see ConnectionMgr.connect...()), and that quillon is at least versin 9.9!";
    script().versionResult = S_FALSE;
    script().lastErrorResult = ORBEL_S_MSG_FAIL;
    script().lastErrorText = "busy";
    EXPECT_EQ("F. getQuillonVersion() failed. Operation failed with error code S_FALSE. / busy", gateFailure(connected()));

    script() = fakeorbel::Script();
    script().versionResult = E_NOTIMPL;
    EXPECT_EQ("F. getQuillonVersion() failed. E_NOTIMPL: The requested operation is not implemented.",
              gateFailure(connected()));

    script() = fakeorbel::Script();
    script().versionPresent = false;
    EXPECT_EQ("F. getQuillonVersion() did not return version info.", gateFailure(connected()));

    script() = fakeorbel::Script();
    script().missing = {"OrbelIDE3"};
    EXPECT_EQ(ide3Gate, gateFailure(connected()));
    EXPECT_EQ(ide3Gate, gateFailure(std::make_shared<ConnectionMgr>())) << "not connected";
    EXPECT_EQ(ide3Gate, gateFailure(nullptr)) << "no connection manager";
}

TEST_F(WrapperBaseTest, VersionCheckAgainstNineTenBuild)
{
    struct Case {
        BYTE major;
        BYTE minor;
        WORD build;
        int required;
        bool passes;
    };
    const std::vector<Case> cases = {
        {9, 10, 15, 15, true},  {9, 10, 14, 15, false}, {9, 11, 0, 15, true},  {10, 0, 0, 15, true},
        {9, 9, 9999, 15, false}, {8, 99, 9999, 15, false}, {9, 10, 98, 98, true}, {9, 10, 97, 98, false},
    };
    for (const Case& c : cases) {
        const std::string version =
            std::to_string(c.major) + "." + std::to_string(c.minor) + "." + std::to_string(c.build);
        SCOPED_TRACE(version + " against build " + std::to_string(c.required));
        script().major = c.major;
        script().minor = c.minor;
        script().build = c.build;
        WrapperBase base(connected());
        if (c.passes) {
            EXPECT_NO_THROW(base.checkQuillonVersion(c.required));
            continue;
        }
        const auto e = thrownBy<VersionConflictException>([&] { base.checkQuillonVersion(c.required); });
        EXPECT_EQ("Invalid quillon version!", e.getDesc());
        EXPECT_EQ("  data:\n    yourVersion: " + version + "\n    minRequiredVersion: 9.10." +
                      std::to_string(c.required) + "\n",
                  e.getData());
    }
}

TEST_F(WrapperBaseTest, ResultTextOfEveryCodeWithTheServerMessage)
{
    const std::vector<std::pair<HRESULT, std::string>> codes = {
        {S_FALSE, "Operation failed with error code S_FALSE."},
        {ORBEL_S_MSG_FAIL, "ORBEL_S_MSG_FAIL: No exact error code. See error message for more information."},
        {ORBEL_S_SIZE, "ORBEL_S_SIZE: Function succeeded but could not return all the data due to output buffer size "
                       "limitation."},
        {E_NOTIMPL, "E_NOTIMPL: The requested operation is not implemented."},
        {E_FAIL, "E_FAIL: kestrix.orbel call failed."},
        {ORBEL_E_CONNECT_FAILED,
         "ORBEL_E_CONNECT_FAILED: The server is not reachable on the specified IP address and port."},
        {ORBEL_E_VERSION_CONFLICT, "ORBEL_E_VERSION_CONFLICT: The client and server versions are incompatible."},
        {ORBEL_E_ALREADY_CONNECTED, "ORBEL_E_ALREADY_CONNECTED: The ORBEL object is already attached."},
        {ORBEL_E_NOT_CONNECTED, "ORBEL_E_NOT_CONNECTED: The ORBEL object is not attached."},
        {ORBEL_E_FILE_NOT_FOUND, "ORBEL_E_FILE_NOT_FOUND: File not found."},
        {ORBEL_E_CAN_NOT_ACCESS,
         "ORBEL_E_CAN_NOT_ACCESS: Evaluation required a memory access which could not be performed."},
        {ORBEL_E_BAD_ID, "ORBEL_E_BAD_ID: Expression could not be evaluated."},
        {ORBEL_E_NOT_SIMPLE_TYPE, "ORBEL_E_NOT_SIMPLE_TYPE: Expression does not evaluate to a simple type."},
        {ORBEL_E_ERROR, "ORBEL_E_ERROR: Error occurred while performing the requested operation."},
        {ORBEL_E_NO_BREAKPOINT, "ORBEL_E_NO_BREAKPOINT: No breakpoint was found at the specified address."},
        {ORBEL_E_NOT_AVAILABLE, "ORBEL_E_NOT_AVAILABLE: The requested operation is not available."},
        {ORBEL_E_SIZE, "ORBEL_E_SIZE: Parameter size invalid."},
        {ORBEL_E_ALREADY_EXISTS,
         "ORBEL_E_ALREADY_EXISTS: Operation failed because an object with the same name already exists."},
        {E_INVALIDARG, "E_INVALIDARG: Invalid parameter."},
        // Codes without a row of their own, the warning code among them, print as signed numbers.
        {ORBEL_S_WARNING, "UNKNOWN ERROR CODE: 262153"},
        {S_OK, "UNKNOWN ERROR CODE: 0"},
        {static_cast<HRESULT>(0x80041234), "UNKNOWN ERROR CODE: -2147216844"},
    };
    // What the server holds: an error and a warning are appended, anything else is not.
    const std::vector<std::pair<HRESULT, std::string>> held = {
        {ORBEL_S_MSG_FAIL, " / no such symbol"}, {ORBEL_S_WARNING, " / no such symbol"}, {S_OK, ""}, {E_FAIL, ""}};
    WrapperBase base(connected());
    for (const auto& state : held) {
        script().lastErrorResult = state.first;
        script().lastErrorText = "no such symbol";
        for (const auto& code : codes) {
            SCOPED_TRACE(code.second);
            EXPECT_EQ(code.second + state.second, base.getResultText(code.first));
            EXPECT_EQ(code.second, WrapperBase::resultCodeText(code.first));
        }
    }
    EXPECT_EQ("GetLastError(0, 1024)", calls("GetLastError").back());
}

TEST_F(WrapperBaseTest, LastErrorTextOnlyForErrors)
{
    WrapperBase base(connected());
    script().lastErrorText = "simulated target is stopped";
    const std::vector<std::pair<HRESULT, std::string>> cases = {
        {ORBEL_S_MSG_FAIL, "simulated target is stopped"}, {ORBEL_S_WARNING, ""}, {S_OK, ""}};
    for (const auto& c : cases) {
        script().lastErrorResult = c.first;
        EXPECT_EQ(c.second, base.getLastErrorText());
    }
    EXPECT_EQ("GetLastError(0, 512)", calls("GetLastError").back());
    // The same warning state gives a result text with the message.
    script().lastErrorResult = ORBEL_S_WARNING;
    EXPECT_EQ("E_FAIL: kestrix.orbel call failed. / simulated target is stopped", base.getResultText(E_FAIL));

    // Messages are cut to the buffers, 1023 and 511 characters.
    script().lastErrorResult = ORBEL_S_MSG_FAIL;
    script().lastErrorText = std::string(2000, 'm');
    EXPECT_EQ(std::string(511, 'm'), base.getLastErrorText());
    EXPECT_EQ("E_FAIL: kestrix.orbel call failed. / " + std::string(1023, 'm'), base.getResultText(E_FAIL));
}

TEST_F(WrapperBaseTest, GatesNameTheMissingInterface)
{
    struct Gate {
        const char* interfaceName;
        std::function<const void*(const WrapperBase&)> open;
        std::string text;
    };
    const std::vector<Gate> gates = {
        {"OrbelDebug", [](const WrapperBase& b) { return b.getOrbelDebug(); }, "Debug interface is not available."},
        {"OrbelDebug2", [](const WrapperBase& b) { return b.getOrbelDebug2(); }, "Debug interface is not available."},
        {"OrbelIDE", [](const WrapperBase& b) { return b.getOrbelIDE(); }, "IDE interface is not available."},
        {"OrbelIDE2", [](const WrapperBase& b) { return b.getOrbelIDE2(); }, "IDE interface is not available."},
        {"OrbelCoverage", [](const WrapperBase& b) { return b.getOrbelCoverage(); },
         "Coverage interface is not available."},
        {"OrbelProfiler2", [](const WrapperBase& b) { return b.getOrbelProfiler(); },
         "Profiler interface is not available."},
        {"OrbelProject", [](const WrapperBase& b) { return b.getOrbelProject(); },
         "'Project' interface is not available."},
        {"OrbelTest", [](const WrapperBase& b) { return b.getOrbelTest(); }, "'Test' interface is not available."},
        {"OrbelHIL", [](const WrapperBase& b) { return b.getOrbelHIL(); }, "HIL interface is not available."},
    };
    {
        WrapperBase whole(connected());
        for (const Gate& gate : gates) {
            EXPECT_NE(nullptr, gate.open(whole)) << gate.interfaceName;
        }
        EXPECT_NE(nullptr, whole.getOrbelIDE3());
    }
    for (const Gate& gate : gates) {
        SCOPED_TRACE(gate.interfaceName);
        script().missing = {gate.interfaceName};
        WrapperBase base(connected());
        EXPECT_EQ(gate.text + CONNECT_HINT, thrownBy<IOException>([&] { gate.open(base); }).getDesc());
    }
}

TEST_F(WrapperBaseTest, LoggerOfTheConnection)
{
    auto mgr = connected();
    WrapperBase base(mgr);
    EXPECT_FALSE(base.isLogging());
    EXPECT_EQ(nullptr, base.getLogger());
    mgr->initLogger("session", ::testing::TempDir() + "kx_wrapper_log.py", CLogger::PYTHON);
    EXPECT_TRUE(base.isLogging());
    EXPECT_EQ(mgr->getLogger(), base.getLogger());
}
