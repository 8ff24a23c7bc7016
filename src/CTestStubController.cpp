#include "CTestStubController.h"

#include "CLogger.h"
#include "CTestCaseController.h"
#include "IllegalArgumentException.h"
#include "OrbelTest.h"

namespace kestrix {

namespace {

const char* const CLASS_CTOR = "kestrix::CTestStubController::CTestStubController";
const char* const CLASS_DTOR = "kestrix::CTestStubController::~CTestStubController";
const int TEST_SERVICE_BUILD = 15;
const char* const RETURN_VALUE_FAILED = "Test stub return value creation failed!";

} // namespace

CTestStubController::CTestStubController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName)
    : WrapperBase(std::move(connectionMgr)), stubName(functionName)
{
    instanceId = "testStub_" + functionName;
    if (CLogger* logger = getLogger()) {
        logger->logc("Calls OrbelTest::CreateStub(handle, functionName)");
        logger->logf(instanceId, CLASS_CTOR, "ss", "connectionMgr", functionName);
    }
    create(functionName);
}

CTestStubController::CTestStubController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& functionName,
                                         const std::string& retValName)
    : WrapperBase(std::move(connectionMgr)), stubName(functionName), retValName(retValName)
{
    instanceId = "testStub_" + functionName;
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, CLASS_CTOR, "sss", "connectionMgr", functionName, retValName);
    }
    create(functionName);
    if (!retValName.empty()) {
        OrbelTest* test = getOrbelTest();
        CTestCaseController::verifyRetVal(test, test->CreateStubReturnValue(handle, retValName.c_str()),
                                          RETURN_VALUE_FAILED, handle, stubName + " / " + retValName);
    }
}

void CTestStubController::create(const std::string& functionName)
{
    if (functionName.empty()) {
        throw IllegalArgumentException(KX_POS, "Function name must not be empty string!");
    }
    checkQuillonVersion(TEST_SERVICE_BUILD);
    OrbelTest* test = getOrbelTest();
    const HRESULT hr = test->CreateStub(&handle, functionName.c_str());
    CTestCaseController::verifyRetVal(test, hr, "Test stub controller creation failed!", handle, stubName);
}

CTestStubController::~CTestStubController()
{
    destroyForDestructor(CLASS_DTOR, [this] { destroy(); });
}

void CTestStubController::destroy()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, "kestrix::CTestStubController::destroy");
    }
    if (isDestroyed) {
        return;
    }
    OrbelTest* test = getOrbelTest();
    CTestCaseController::verifyRetVal(test, test->DestroyStub(handle), "Test stub controller destruction failed!", handle,
                                      stubName);
    isDestroyed = true;
}

void CTestStubController::createParameter(DWORD index, const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestStubController::createParameter", "Ds", index, name);
    }
    OrbelTest* test = getOrbelTest();
    CTestCaseController::verifyRetVal(test, test->CreateStubParameter(handle, index, name.c_str()),
                                      "Test stub parameter creation failed!", handle, stubName + " / " + name);
}

void CTestStubController::createReturnValue(const std::string& name)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, "kestrix::CTestStubController::createReturnValue", "s", name);
    }
    OrbelTest* test = getOrbelTest();
    CTestCaseController::verifyRetVal(test, test->CreateStubReturnValue(handle, name.c_str()), RETURN_VALUE_FAILED,
                                      handle, stubName + " / " + name);
}

} // namespace kestrix
