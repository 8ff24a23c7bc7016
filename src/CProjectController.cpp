#include "CProjectController.h"

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelProject.h"
#include "OrbelProjectFlags.h"
#include "OrbelResults.h"

namespace kestrix {

namespace {

typedef OrbelProjectFlags F;

} // namespace

CProjectController::CProjectController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(connectionMgr), m_options(connectionMgr)
{
    instanceId = "projectCtrl";
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId + " = obFactory.getProjectCtrl()");
    }
}

CProjectController::~CProjectController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CProjectController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CProjectController::method(const char* name)
{
    return std::string("kestrix::CProjectController::") + name;
}

void CProjectController::command(DWORD word, const char* second, const char* third, const std::string& failure)
{
    const HRESULT hr = getOrbelProject()->ProjectCommand(word, second, third);
    if (hr != S_OK) {
        throw IOException(KX_POS, failure, getResultText(hr));
    }
}

void CProjectController::flagged(const char* name, DWORD word, bool flag)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method(name), "b", flag);
    }
    command(flag ? (word | F::pcFlag) : word, nullptr, nullptr, method(name) + " failed!");
}

void CProjectController::compile(const std::string& fileName)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("compile"), fileName);
    }
    command(F::pcCompile, nullptr, fileName.c_str(), method("compile") + " failed for file: '" + fileName + "'.");
}

void CProjectController::link(bool flag)
{
    flagged("link", F::pcLink, flag);
}

void CProjectController::make(bool flag)
{
    flagged("make", F::pcMake, flag);
}

void CProjectController::build(bool flag)
{
    flagged("build", F::pcBuild, flag);
}

void CProjectController::dependencies()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("dependencies"));
    }
    command(F::pcDependencies, nullptr, nullptr, method("dependencies") + " failed!");
}

void CProjectController::stop()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("stop"));
    }
    command(F::pcStop, nullptr, nullptr, method("stop") + " failed!");
}

void CProjectController::customOperation(const std::string& operation, const std::string& parameters)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("customOperation"), "ss", operation, parameters);
    }
    command(F::pcCustom, operation.c_str(), parameters.c_str(),
            method("customOperation") + " failed for operation: '" + operation + "', parameters: '" + parameters
                + "'");
}

CBuildStatus CProjectController::getStatus()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("getStatus"));
    }
    CBuildStatus status;
    const HRESULT hr = getOrbelProject()->GetBuildStatus(0, &status);
    if (hr != S_OK) {
        throw IOException(KX_POS, method("getStatus") + " failed!", getResultText(hr));
    }
    return status;
}

CBuildOptions& CProjectController::options()
{
    if (CLogger* logger = getLogger()) {
        logger->log("buildOptions = " + instanceId, method("options"));
    }
    return m_options;
}

} // namespace kestrix
