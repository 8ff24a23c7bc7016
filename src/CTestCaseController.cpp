#include "CTestCaseController.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include "CLogger.h"
#include "CTestStubController.h"
#include "CTestVariableController.h"
#include "CUtil.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"
#include "OrbelTest.h"
#include "OrbelTestFlags.h"
#include "Stopwatch.h"

namespace kestrix {

namespace {

const char* const CLASS_CTOR = "kestrix::CTestCaseController::CTestCaseController";
const char* const CLASS_DTOR = "kestrix::CTestCaseController::~CTestCaseController";
const int TEST_SERVICE_BUILD = 15;
const DWORD ERROR_TEXT_SIZE = 1000;
const DWORD RESULT_SIZE = 1024;
// Stopwatch units (100 ns) in a millisecond.
const int64_t UNITS_PER_MS = 10000;
// The first pause of waitUntilStopped.
const int FIRST_POLL_US = 20;

/// Adds the failure's data items in their fixed order and throws.
template <class E>
[[noreturn]] void raise(E&& exception, const std::string& text, DWORD handle, const std::string& name)
{
    exception.add("orbelErr", text).add("handle", CUtil::i2a(handle)).add("objId", name);
    throw exception;
}

/// The text up to the first zero of a buffer that the server may have filled to its end.
std::string bufferText(const std::vector<char>& buffer)
{
    return std::string(buffer.data(), strnlen(buffer.data(), buffer.size()));
}

int digitValue(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'Z') {
        return c - 'A' + 10;
    }
    return 99;
}

/// A signed 64-bit conversion in `base`: leading white space, an optional sign, digits up to the
/// first non-digit; 0 when nothing parses, the nearest limit on overflow.
int64_t parseInt64(const char* text, int base)
{
    while (*text != '\0' && std::isspace(static_cast<unsigned char>(*text))) {
        ++text;
    }
    bool negative = false;
    if (*text == '+' || *text == '-') {
        negative = *text == '-';
        ++text;
    }
    const uint64_t limit = negative ? uint64_t(std::numeric_limits<int64_t>::max()) + 1
                                    : uint64_t(std::numeric_limits<int64_t>::max());
    uint64_t value = 0;
    bool overflow = false;
    for (; digitValue(*text) < base; ++text) {
        const uint64_t digit = static_cast<uint64_t>(digitValue(*text));
        if (overflow || value > (limit - digit) / static_cast<uint64_t>(base)) {
            overflow = true;
            continue;
        }
        value = value * static_cast<uint64_t>(base) + digit;
    }
    if (overflow) {
        return negative ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
    }
    return negative ? static_cast<int64_t>(0 - value) : static_cast<int64_t>(value);
}

} // namespace

CTestCaseController::CTestCaseController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName,
                                         const std::string& retValName)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "testCaseCtrl_" + functionName;
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId + " = " + CLASS_CTOR + "(connectionMgr, \"" + functionName + "\", \"" + retValName +
                    "\")");
    }
    if (functionName.empty()) {
        throw IllegalArgumentException(KX_POS, "Function name must not be empty string!");
    }
    checkQuillonVersion(TEST_SERVICE_BUILD);
    OrbelTest* test = getOrbelTest();
    verifyRetVal(test, test->CreateTest(&handle, functionName.c_str()), "TestCaseController creation failed!", handle,
                 instanceId);
    verifyRetVal(test, test->CreateReturnValue(handle, retValName.c_str()),
                 "Creation of variable for return value failed!", handle, instanceId);
}

CTestCaseController::~CTestCaseController()
{
    if (CLogger* logger = getLogger()) {
        logger->logc("Dtor: ~CTestCaseController");
    }
    destroyForDestructor(CLASS_DTOR, [this] { destroy(); });
}

void CTestCaseController::destroy()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, "kestrix::CTestCaseController::destroy");
    }
    if (isDestroyed) {
        return;
    }
    // The last owners of the variables and stubs go first, so that they are gone on the
    // Quillon side before their test.
    variables.clear();
    stubs.clear();
    OrbelTest* test = getOrbelTest();
    verifyRetVal(test, test->DestroyTest(handle), "Can't destroy test case!", handle, instanceId);
    isDestroyed = true;
}

void CTestCaseController::createParameter(DWORD index, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestCaseController::createParameter", "is", static_cast<int>(index), name);
    }
    OrbelTest* test = getOrbelTest();
    verifyRetVal(test, test->CreateParameter(handle, index, name.c_str()),
                 "Method 'createParameter()' failed! parameter: " + name, handle, instanceId);
}

std::shared_ptr<CTestVariableController> CTestCaseController::createVariable(const std::string& name,
                                                                             const std::string& type)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestCaseController::createVariable", "ss", name, type);
    }
    auto variable = std::make_shared<CTestVariableController>(m_connectionMgr, name, type);
    variables[name] = variable;
    return variable;
}

std::shared_ptr<CTestStubController> CTestCaseController::createStub(const std::string& functionName)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestCaseController::createStub", "s", functionName);
    }
    auto stub = std::make_shared<CTestStubController>(m_connectionMgr, functionName);
    stubs[stub->getHandle()] = stub;
    return stub;
}

std::shared_ptr<CTestStubController> CTestCaseController::getActiveStub()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, "kestrix::CTestCaseController::getActiveStub");
    }
    OrbelTest* test = getOrbelTest();
    DWORD stubHandle = 0;
    const HRESULT hr = test->GetStatus(OrbelTestFlags::tskActiveStub, 0, &stubHandle);
    verifyRetVal(test, hr, "Method 'getActiveStub()' failed!", stubHandle, instanceId);
    const auto found = stubs.find(stubHandle);
    if (found == stubs.end()) {
        throw IllegalStateException(KX_POS, "Stub controller not found!").add("instanceId", instanceId);
    }
    return found->second;
}

std::string CTestCaseController::evaluate(const std::string& expression, DWORD accessFlags)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestCaseController::evaluate", "s", expression);
    }
    OrbelTest* test = getOrbelTest();
    std::vector<char> result(RESULT_SIZE, '\0');
    const HRESULT hr = test->Evaluate(accessFlags, expression.c_str(), result.data(), RESULT_SIZE);
    verifyRetVal(test, hr, "Method 'evaluate()' failed for expression: '" + expression + "'", handle, instanceId);
    return bufferText(result);
}

std::string CTestCaseController::modify(const std::string& expression, const std::string& value, DWORD accessFlags)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestCaseController::modify", "ss", expression, value);
    }
    OrbelTest* test = getOrbelTest();
    std::vector<char> result(RESULT_SIZE, '\0');
    const HRESULT hr = test->Modify(accessFlags, expression.c_str(), result.data(), RESULT_SIZE, value.c_str());
    verifyRetVal(test, hr, "Method 'modify()' failed! Expression: '" + expression + " = " + value + "'", handle,
                 instanceId);
    return bufferText(result);
}

DWORD CTestCaseController::getStatus()
{
    return getStatus(OrbelTestFlags::tskTestState);
}

DWORD CTestCaseController::getStatus(DWORD kind)
{
    CLogger* logger = getLogger();
    if (logger != nullptr) {
        logger->log(instanceId, "kestrix::CTestCaseController::getStatus");
    }
    OrbelTest* test = getOrbelTest();
    DWORD value = 0;
    verifyRetVal(test, test->GetStatus(kind, handle, &value), "Method 'getStatus()' failed!", handle, instanceId);
    if (logger != nullptr) {
        logger->logc("status == " + CUtil::i2a(value));
    }
    return value;
}

void CTestCaseController::control(DWORD command, const char* method, const char* message)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method);
    }
    OrbelTest* test = getOrbelTest();
    verifyRetVal(test, test->Control(command, handle), message, handle, instanceId);
}

void CTestCaseController::init()
{
    control(OrbelTestFlags::tcInit, "kestrix::CTestCaseController::init", "Method 'init()' failed! ");
}

void CTestCaseController::clean()
{
    control(OrbelTestFlags::tcClean, "kestrix::CTestCaseController::clean", "Method 'clean()' failed! ");
}

void CTestCaseController::run()
{
    control(OrbelTestFlags::tcRun, "kestrix::CTestCaseController::run", "Method 'run()' failed! ");
}

void CTestCaseController::abort()
{
    control(OrbelTestFlags::tcAbort, "kestrix::CTestCaseController::abort", "Method 'abort()' failed! ");
}

void CTestCaseController::pause()
{
    control(OrbelTestFlags::tcPause, "kestrix::CTestCaseController::pause", "Method 'pause()' failed! ");
}

bool CTestCaseController::waitUntilStopped(int timeout, DWORD pollingInterval)
{
    Stopwatch stopwatch;
    stopwatch.start();
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestCaseController::waitUntilStopped", "iD", timeout, pollingInterval);
    }
    // Most functions under test return within microseconds: the first polls come quickly, then
    // the pause doubles up to the polling interval.
    const auto longest = std::chrono::microseconds(std::max<DWORD>(pollingInterval, 1) * 1000ULL);
    auto pause = std::min(std::chrono::microseconds(FIRST_POLL_US), longest);
    DWORD state = getStatus(OrbelTestFlags::tskTestState);
    while (state == OrbelTestFlags::stateRunning) {
        if (timeout > 0 && stopwatch.getTime() / UNITS_PER_MS > timeout) {
            return false;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, longest);
        state = getStatus(OrbelTestFlags::tskTestState);
    }
    return true;
}

void CTestCaseController::clearAllTests(std::shared_ptr<ConnectionMgr> connectionMgr)
{
    OrbelTest* test = WrapperBase(std::move(connectionMgr)).getOrbelTest();
    verifyRetVal(test, test->Control(OrbelTestFlags::tcClearAll, 0), "Method 'clearAllTests()' failed! ", 0, "''");
}

void CTestCaseController::verifyRetVal(OrbelTest* orbelTest, HRESULT hr, const std::string& message, DWORD handle,
                                       const std::string& name)
{
    if (hr == 0) {
        return;
    }
    DWORD errorClass = OrbelTestFlags::tecNone;
    std::vector<char> buffer(ERROR_TEXT_SIZE, '\0');
    std::string text = "GetLastError failed!";
    if (orbelTest != nullptr && orbelTest->GetLastError(0, &errorClass, buffer.data(), ERROR_TEXT_SIZE) == 0) {
        text = bufferText(buffer);
    }
    switch (errorClass) {
    case OrbelTestFlags::tecNone:
        raise(IllegalStateException(KX_POS, "kestrix.test call failed, but GetLastError() didn't return error code! ")
                  .add("info", message),
              text, handle, name);
    case OrbelTestFlags::tecIllegalState:
        raise(IllegalStateException(KX_POS, message), text, handle, name);
    case OrbelTestFlags::tecIllegalArgument:
        raise(IllegalArgumentException(KX_POS, message), text, handle, name);
    default:
        raise(IOException(KX_POS, message), text, handle, name);
    }
}

std::string CTestCaseController::testState2str(DWORD value)
{
    switch (value) {
    case OrbelTestFlags::stateOffline:
        return "stateOffline";
    case OrbelTestFlags::stateInitialized:
        return "stateInitialized";
    case OrbelTestFlags::stateRunning:
        return "stateRunning";
    case OrbelTestFlags::stateEnded:
        return "stateEnded";
    case OrbelTestFlags::stateStub:
        return "stateStub";
    case OrbelTestFlags::stateUnexpectedStop:
        return "stateUnexpectedStop";
    case OrbelTestFlags::stateAborted:
        return "stateAborted";
    case OrbelTestFlags::statePaused:
        return "statePaused";
    default:
        return CUtil::i2a(value);
    }
}

std::string CTestCaseController::stubState2str(DWORD value)
{
    switch (value) {
    case OrbelTestFlags::stateStubNotActive:
        return "stateStubNotActive";
    case OrbelTestFlags::stateStubActive:
        return "stateStubActive";
    default:
        return CUtil::i2a(value);
    }
}

int64_t CTestCaseController::s2i64(const std::string& text)
{
    if (text.size() > 2 && (text[0] == '0' || text[0] == '\\') && text[1] == 'x') {
        return parseInt64(text.c_str() + 2, 16);
    }
    return parseInt64(text.c_str(), 10);
}

} // namespace kestrix
