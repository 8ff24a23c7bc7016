#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "OrbelTypes.h"
#include "WrapperBase.h"

namespace kestrix {

class ConnectionMgr;
class CTestStubController;
class CTestVariableController;
class OrbelTest;

/// One test instance on the Quillon side: the function under test with its parameters, local
/// variables and stubs, and the control of its run. Every operation is one call of `OrbelTest`.
class CTestCaseController : public WrapperBase {
public:
    CTestCaseController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName,
                        const std::string& retValName);
    /// Destroys the test, its variables and stubs first, if still alive; never throws.
    ~CTestCaseController() override;

    /// Destroys the local variables and stubs no one else holds, then the test; once only.
    void destroy();

    void createParameter(DWORD index, const std::string& name);
    /// Replaces a variable of the same name in this test's map.
    std::shared_ptr<CTestVariableController> createVariable(const std::string& name, const std::string& type);
    std::shared_ptr<CTestStubController> createStub(const std::string& functionName);
    /// The stub of this test that the target stopped on.
    std::shared_ptr<CTestStubController> getActiveStub();

    /// Evaluates in the test the target is stopped in.
    std::string evaluate(const std::string& expression, DWORD accessFlags = 0);
    std::string modify(const std::string& expression, const std::string& value, DWORD accessFlags = 0);

    /// The test state (OrbelTestFlags::ETestState).
    DWORD getStatus();
    /// `kind` 3 gives the test state, 2 the handle of the active stub; others pass through.
    DWORD getStatus(DWORD kind);

    void init();
    void clean();
    void run();
    void abort();
    void pause();

    /// Polls the state until it is no longer running; false once `timeout` ms have passed.
    /// A timeout of 0 or below never expires.
    bool waitUntilStopped(int timeout = 0, DWORD pollingInterval = 100);

    /// Clears every test of the session.
    static void clearAllTests(std::shared_ptr<ConnectionMgr> connectionMgr);
    /// Raises the exception of the last test-service failure unless `hr` is 0.
    static void verifyRetVal(OrbelTest* orbelTest, HRESULT hr, const std::string& message, DWORD handle,
                             const std::string& name);
    static std::string testState2str(DWORD value);
    static std::string stubState2str(DWORD value);
    /// Decimal, or hexadecimal behind "0x" or "\x"; 0 where nothing parses, clamped on overflow.
    static int64_t s2i64(const std::string& text);

private:
    void control(DWORD command, const char* method, const char* message);

    DWORD handle = 0;
    std::map<std::string, std::shared_ptr<CTestVariableController>> variables;
    std::map<DWORD, std::shared_ptr<CTestStubController>> stubs;
    bool isDestroyed = false;
};

} // namespace kestrix
