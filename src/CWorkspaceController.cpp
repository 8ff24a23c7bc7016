#include "CWorkspaceController.h"

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelIDE.h"
#include "OrbelIDEFlags.h"
#include "OrbelResults.h"

namespace kestrix {

namespace {

typedef OrbelIDEFlags F;

/// A file name as a raw string of the script's language.
std::string rawString(const std::string& text)
{
    return "r\"" + text + "\"";
}

} // namespace

CWorkspaceController::CWorkspaceController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : WrapperBase(std::move(connectionMgr))
{
    instanceId = "workspaceCtrl";
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId + " = obFactory.getWorkspaceCtrl()");
    }
}

CWorkspaceController::~CWorkspaceController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CWorkspaceController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CWorkspaceController::method(const char* name)
{
    return std::string("kestrix::CWorkspaceController::") + name;
}

void CWorkspaceController::newWS(const std::string& fileName)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("newWS"), fileName);
    }
    workspace(F::wsNew, fileName);
}

bool CWorkspaceController::open(const std::string& fileName)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("open"), "v", rawString(fileName));
    }
    return workspace(F::wsOpen, fileName);
}

void CWorkspaceController::save()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("save"));
    }
    workspace(F::wsSave, "");
}

void CWorkspaceController::saveAs(const std::string& fileName)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("saveAs"), "v", rawString(fileName));
    }
    workspace(F::wsSaveAs, fileName);
}

void CWorkspaceController::close()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("close"));
    }
    workspace(F::wsClose, "");
}

void CWorkspaceController::closeDiscard()
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method("closeDiscard"));
    }
    workspace(F::wsCloseDiscard, "");
}

bool CWorkspaceController::workspace(DWORD command, const std::string& fileName)
{
    const HRESULT hr = getOrbelIDE()->Workspace(command, fileName.c_str());
    switch (hr) {
    case S_OK:
        return true;
    case S_FALSE:
        return false;
    case ORBEL_E_ERROR:
        throw IOException(KX_POS, "An error occurred when performing operation on workspace:!")
            .add("description", getResultText(hr))
            .add("flags", static_cast<int>(command))
            .add("workspaceFile", fileName);
    default:
        throw IOException(KX_POS, "Error in CWorkspaceController::workspace()!")
            .add("description", getResultText(hr))
            .add("flags", static_cast<int>(command))
            .add("workspaceFile", fileName);
    }
}

} // namespace kestrix
