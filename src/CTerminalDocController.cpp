#include "CTerminalDocController.h"

#include "CLogger.h"
#include "OrbelIDEFlags.h"

namespace kestrix {

namespace {

typedef OrbelIDEFlags F;

} // namespace

CTerminalDocController::CTerminalDocController(std::shared_ptr<ConnectionMgr> connectionMgr)
    : CDocumentController(std::move(connectionMgr), "")
{
    instanceId = "terminalDocCtrl";
    logLine(instanceId + " = obFactory.getTerminalDocCtrl()");
    document(method("CTerminalDocController"), F::dfTerminal | F::dfOpenFile, nullptr, 0);
}

CTerminalDocController::~CTerminalDocController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CTerminalDocController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CTerminalDocController::method(const char* operation)
{
    return std::string("kestrix::CTerminalDocController::") + operation;
}

void CTerminalDocController::close()
{
    command(method("close"), F::dfTerminal | F::dfClose);
}

void CTerminalDocController::start()
{
    command(method("start"), F::dfTerminal | F::dfStart);
}

void CTerminalDocController::stop()
{
    command(method("stop"), F::dfTerminal | F::dfStop);
}

void CTerminalDocController::saveAs(const std::string& fileName)
{
    const std::string name = method("saveAs");
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, name, fileName);
    }
    document(name, F::dfTerminal | F::dfSaveAs, fileName.c_str(), 0);
}

} // namespace kestrix
