#include "CTestVariableController.h"

#include "CLogger.h"
#include "CTestCaseController.h"
#include "IllegalArgumentException.h"
#include "OrbelTest.h"

namespace kestrix {

namespace {

const char* const CLASS_CTOR = "kestrix::CTestVariableController::CTestVariableController";
const char* const CLASS_DTOR = "kestrix::CTestVariableController::~CTestVariableController";
// The test service's first release with the test interface is 9.10 build 15.
const int TEST_SERVICE_BUILD = 15;

} // namespace

CTestVariableController::CTestVariableController(std::shared_ptr<ConnectionMgr> connectionMgr,
                                                 const std::string& name, const std::string& type)
    : WrapperBase(std::move(connectionMgr)), name(name)
{
    instanceId = "testVariable";
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, CLASS_CTOR, "sss", "connectionMgr", name, type);
    }
    if (name.empty()) {
        throw IllegalArgumentException(KX_POS, "Variable name must not be empty string!");
    }
    if (type.empty()) {
        throw IllegalArgumentException(KX_POS, "Variable type must not be empty string!").add("variable", name);
    }
    checkQuillonVersion(TEST_SERVICE_BUILD);
    OrbelTest* test = getOrbelTest();
    const HRESULT hr = test->CreateVariable(&handle, name.c_str(), type.c_str());
    CTestCaseController::verifyRetVal(test, hr, "Test variable controller creation failed!", handle, name);
}

CTestVariableController::~CTestVariableController()
{
    destroyForDestructor(CLASS_DTOR, [this] { destroy(); });
}

void CTestVariableController::destroy()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, "kestrix::CTestVariableController::destroy");
    }
    if (isDestroyed) {
        return;
    }
    OrbelTest* test = getOrbelTest();
    CTestCaseController::verifyRetVal(test, test->DestroyVariable(handle), "Test variable controller destruction failed!",
                                      handle, name);
    isDestroyed = true;
}

} // namespace kestrix
