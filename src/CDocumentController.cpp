#include "CDocumentController.h"

#include "CLogger.h"
#include "Exceptions.h"
#include "OrbelIDE.h"
#include "OrbelIDEFlags.h"
#include "OrbelResults.h"

namespace kestrix {

namespace {

typedef OrbelIDEFlags F;

bool isLetterOrDigit(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// The opening action of a mode, without the document type; false for an unknown mode.
bool openingFlags(const std::string& openMode, bool hasFile, DWORD typeBits, DWORD& flags)
{
    if (openMode == "r" || openMode == "u") {
        flags = hasFile ? F::dfOpenFile : F::dfOpenDefault;
    } else if (openMode == "w") {
        flags = F::dfReset | (hasFile ? F::dfOpenNewFile : F::dfOpenNew) | typeBits;
    } else if (openMode == "a") {
        flags = (hasFile ? F::dfOpenNewFile : F::dfOpenNew) | typeBits;
    } else {
        return false;
    }
    return true;
}

} // namespace

CDocumentController::CDocumentController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& fileName)
    : WrapperBase(std::move(connectionMgr)), m_fileName(fileName)
{
    instanceId = instanceIdOf("docCtrl_", fileName);
}

CDocumentController::CDocumentController(std::shared_ptr<ConnectionMgr> connectionMgr, const std::string& fileName,
                                         const std::string& openMode)
    : CDocumentController(std::move(connectionMgr), fileName)
{
    logLine(instanceId + " = obFactory.getDocumentCtrl(\"" + fileName + "\", \"" + openMode + "\")");
    open(openMode, 0, method("CDocumentController"));
}

CDocumentController::~CDocumentController() = default;

std::string CDocumentController::method(const char* operation)
{
    return std::string("kestrix::CDocumentController::") + operation;
}

std::string CDocumentController::instanceIdOf(const std::string& prefix, const std::string& fileName)
{
    const size_t slash = fileName.rfind('\\');
    std::string name = slash == std::string::npos ? fileName : fileName.substr(slash + 1);
    for (char& c : name) {
        if (!isLetterOrDigit(c)) {
            c = '_';
        }
    }
    return prefix + name;
}

void CDocumentController::logLine(const std::string& text) const
{
    if (CLogger* logger = getLogger()) {
        logger->log(text);
    }
}

void CDocumentController::open(const std::string& openMode, DWORD typeBits, const std::string& caller)
{
    DWORD flags = 0;
    if (!openingFlags(openMode, !m_fileName.empty(), typeBits, flags)) {
        throw IllegalArgumentException(KX_POS, "Invalid open mode! Should be one of: 'u', 'w', or 'a'. It is: ",
                                       openMode);
    }
    document(caller, flags, nullptr, 0);
}

bool CDocumentController::document(const std::string& caller, DWORD flags, const char* strParameter,
                                   DWORD dwParameter)
{
    const HRESULT hr = getOrbelIDE()->Document(flags, m_fileName.c_str(), strParameter, dwParameter);
    switch (hr) {
    case S_OK:
        return true;
    case S_FALSE: {
        const DWORD command = flags & F::dfCommandMask;
        if (command == F::dfStop || command == F::dfIsActive) {
            return false;
        }
        throw IOException(KX_POS, "Document operation failed:", caller);
    }
    case ORBEL_E_FILE_NOT_FOUND:
        throw FileNotFoundException(KX_POS, caller + ": File not found: ", m_fileName);
    case ORBEL_E_NOT_AVAILABLE:
        throw IOException(KX_POS, caller + ": Not available: ", m_fileName);
    case E_NOTIMPL:
        throw FeatureNotImplementedException(KX_POS, caller + ": the requested operation is not implemented.");
    case ORBEL_E_ERROR:
        throw IllegalArgumentException(KX_POS, "An error occurred when calling OrbelIDE::Document() from function " +
                                                   caller)
            .add("error", getLastErrorText())
            .add("flags", static_cast<int>(flags))
            .add("fileName", m_fileName)
            .add("strParameter", strParameter != nullptr ? strParameter : "NULL")
            .add("dwParameter", static_cast<int>(dwParameter));
    default:
        throw IOException(KX_POS, caller + ": General error: ", getResultText(hr));
    }
}

bool CDocumentController::command(const std::string& method, DWORD flags)
{
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, method);
    }
    return document(method, flags, nullptr, 0);
}

void CDocumentController::start()
{
    command(method("start"), F::dfStart);
}

void CDocumentController::stop()
{
    command(method("stop"), F::dfStop);
}

void CDocumentController::resume()
{
    command(method("resume"), F::dfResume);
}

void CDocumentController::close()
{
    command(method("close"), F::dfClose);
}

void CDocumentController::closeDiscard()
{
    command(method("closeDiscard"), F::dfCloseDiscard);
}

void CDocumentController::closeAll()
{
    command(method("closeAll"), F::dfCloseAll);
}

void CDocumentController::save()
{
    command(method("save"), F::dfSave);
}

void CDocumentController::saveAsPrompt()
{
    command(method("saveAsPrompt"), F::dfSaveAsPrompt);
}

void CDocumentController::clearMarker()
{
    command(method("clearMarker"), F::dfClearMarker);
}

void CDocumentController::reset(DWORD value)
{
    const std::string name = method("reset");
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, name, value);
    }
    document(name, F::dfReset, nullptr, value);
}

void CDocumentController::saveAs(const std::string& newName, bool saveOption)
{
    const std::string name = method("saveAs");
    if (CLogger* logger = getLogger()) {
        logger->logf(instanceId, name, "sb", newName, saveOption);
    }
    document(name, saveOption ? F::dfSaveAsOption : F::dfSaveAs, newName.c_str(), 0);
    m_fileName = newName;
}

void CDocumentController::setMarker(DWORD value)
{
    const std::string name = method("setMarker");
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, name, value);
    }
    document(name, F::dfSetMarker, nullptr, value);
}

void CDocumentController::setFocus(DWORD value)
{
    const std::string name = method("setFocus");
    if (CLogger* logger = getLogger()) {
        logger->log(instanceId, name, value);
    }
    document(name, F::dfSetFocus, nullptr, value);
}

} // namespace kestrix
