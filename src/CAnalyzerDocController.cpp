#include "CAnalyzerDocController.h"

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelIDEFlags.h"

namespace kestrix {

namespace {

typedef OrbelIDEFlags F;

/// Option of an export whose format was set beforehand.
const DWORD FORMAT_ALREADY_SET = 0xFFFFFFFF;

} // namespace

const char* const CAnalyzerDocController::exportTrcAsText = "Text";
const char* const CAnalyzerDocController::exportTrcAsCSV = "CSV";
const char* const CAnalyzerDocController::exportTrcAsBinary = "Binary";
const char* const CAnalyzerDocController::exportCCAsHTML = "HTML";
const char* const CAnalyzerDocController::exportCCAsText = "Text";
const char* const CAnalyzerDocController::exportCCAsCSV = "CSV";
const char* const CAnalyzerDocController::exportCCAsXML = "XML";
const char* const CAnalyzerDocController::exportCCAsReviewHTML = "Review (HTML)";
const char* const CAnalyzerDocController::exportCCAsReviewText = "Review (Text)";
const char* const CAnalyzerDocController::exportCCAsXML2 = "XML2";

CAnalyzerDocController::CAnalyzerDocController(std::shared_ptr<ConnectionMgr> connectionMgr, int documentType,
                                               const std::string& fileName, const std::string& openMode)
    : CDocumentController(std::move(connectionMgr), fileName)
{
    instanceId = instanceIdOf("analyzer_", fileName);
    const std::string arguments = "\"" + fileName + "\", \"" + openMode + "\")";
    switch (documentType) {
    case ANALYZER:
        logLine(instanceId + " = obFactory.getAnalyzerDocCtrl(kestrix.orbel.CAnalyzerDocController.ANALYZER, " +
                arguments);
        m_documentType = F::dfTypeAnalyzer;
        break;
    case COVERAGE:
        logLine(instanceId + " = obFactory.getCoverageCtrl(" + arguments);
        m_documentType = F::dfTypeCoverage;
        break;
    default:
        throw IOException(KX_POS, "Invalid value for document type: ", documentType);
    }
    open(openMode, m_documentType, method("CAnalyzerDocController"));
}

CAnalyzerDocController::~CAnalyzerDocController()
{
    try {
        if (CLogger* logger = getLogger()) {
            logger->logc("Dtor: ~CAnalyzerDocController");
        }
    } catch (...) {
        // A destructor reports nothing; a failed log line is lost.
    }
}

std::string CAnalyzerDocController::method(const char* operation)
{
    return std::string("kestrix::CAnalyzerDocController::") + operation;
}

bool CAnalyzerDocController::isActive()
{
    return command(method("isActive"), F::dfIsActive);
}

void CAnalyzerDocController::select(const std::string& triggerName)
{
    const std::string name = method("select");
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, name, triggerName);
    }
    try {
        document(name, F::dfSelectTrigger, triggerName.c_str(), 0);
    } catch (const IllegalArgumentException& e) {
        throw IllegalArgumentException(KX_POS, "Check that trigger with the given name exists!", e)
            .add("triggerName", triggerName);
    }
}

void CAnalyzerDocController::setExportFormat(const std::string& format)
{
    const std::string name = method("setExportFormat");
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, name, format);
    }
    document(name, F::dfSetExportFormat, format.c_str(), 0);
}

void CAnalyzerDocController::exportAs(int exportType, const std::string& fileName, DWORD option)
{
    const std::string name = method("exportAs");
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, name, "isD", exportType, fileName, option);
    }
    document(name, static_cast<DWORD>(exportType) | F::dfExport, fileName.c_str(), option);
}

void CAnalyzerDocController::exportAs(int exportType, const std::string& fileName, const std::string& format)
{
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, method("exportAs"), "iss", exportType, fileName, format);
    }
    setExportFormat(format);
    exportAs(exportType, fileName, FORMAT_ALREADY_SET);
}

void CAnalyzerDocController::exportAsAndLaunchViewer(int exportType, const std::string& fileName, DWORD option)
{
    const std::string name = method("exportAsAndLaunchViewer");
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, name, "isD", exportType, fileName, option);
    }
    document(name, static_cast<DWORD>(exportType) | F::dfExportAndLaunchViewer, fileName.c_str(), option);
}

void CAnalyzerDocController::setMarker()
{
    if (CLogger* logger = getLogger()) {
        logger->logc("method 'setMarker()' called, but has no effect on analyzer documents.");
    }
}

} // namespace kestrix
