#include "com/DocumentCommand.h"

#include <cstdio>

#include "OrbelIDEFlags.h"
#include "OrbelResults.h"
#include "services/AnalyzerError.h"

namespace quillon::com {

using F = kestrix::OrbelIDEFlags;
using services::AnalyzerError;
using services::Document;

namespace {

constexpr DWORD kTerminalMask = 0x0FFF0000;
constexpr DWORD kMarkerMask = F::dfSetMarker | F::dfClearMarker | F::dfSetFocus;
constexpr DWORD kTypeMask = 0x0F000000;

} // namespace

DocumentCommand::DocumentCommand(DWORD flags, std::string fileName, const char* strParameter, DWORD dwParameter)
    : m_flags(flags), m_fileName(std::move(fileName)), m_number(dwParameter)
{
    if (strParameter != nullptr) {
        m_text = strParameter;
    }
}

void DocumentCommand::unknown() const
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", m_flags);
    throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, std::string("unknown document flag word ") + text);
}

const std::string& DocumentCommand::text(const char* what) const
{
    if (!m_text || m_text->empty()) {
        throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, std::string("no ") + what + " given");
    }
    return *m_text;
}

std::optional<bool> DocumentCommand::mustExist() const
{
    switch (m_flags & F::dfActionMask) {
    case F::dfOpenNew:
    case F::dfOpenNewFile:
        return false;
    case F::dfOpenFile:
    case F::dfOpenDefault:
        return true;
    default:
        return std::nullopt;
    }
}

std::optional<Document::Kind> DocumentCommand::kind() const
{
    switch (m_flags & kTypeMask) {
    case 0:
        return std::nullopt;
    case F::dfTypeAnalyzer:
        return Document::Kind::Analyzer;
    case F::dfTypeCoverage:
        return Document::Kind::Coverage;
    default:
        unknown();
    }
}

HRESULT DocumentCommand::codeOf(AnalyzerError::Kind kind)
{
    switch (kind) {
    case AnalyzerError::Kind::FileNotFound:
        return kestrix::ORBEL_E_FILE_NOT_FOUND;
    case AnalyzerError::Kind::NotAvailable:
        return kestrix::ORBEL_E_NOT_AVAILABLE;
    case AnalyzerError::Kind::NotImplemented:
        return kestrix::E_NOTIMPL;
    case AnalyzerError::Kind::InvalidArgument:
    case AnalyzerError::Kind::NotFound:
    case AnalyzerError::Kind::IllegalState:
    case AnalyzerError::Kind::BadSize:
    case AnalyzerError::Kind::Failed:
        break;
    }
    return kestrix::ORBEL_E_ERROR;
}

bool DocumentCommand::run(services::DocumentService& documents) const
{
    if ((m_flags & kTerminalMask) == F::dfTerminal) {
        return runOnTerminal(documents);
    }
    const std::string& name = m_fileName;
    switch (m_flags & F::dfCommandMask) {
    case 0:
        return (m_flags & kMarkerMask) ? runMarker(documents) : runAction(documents);
    case F::dfStart:
        documents.start(name);
        return true;
    case F::dfStop:
        return documents.stop(name);
    case F::dfIsActive:
        return documents.isActive(name);
    case F::dfResume:
        documents.resume(name);
        return true;
    case F::dfSelectTrigger:
        documents.selectTrigger(name, text("trigger name"));
        return true;
    case F::dfExport:
    case F::dfExportAndLaunchViewer:
        documents.exportTo(name, text("export file name"), m_number);
        return true;
    case F::dfSetExportFormat:
        documents.setExportFormat(name, text("export format"));
        return true;
    case F::dfReset:
        if (const auto exists = mustExist()) {
            documents.open(name, *exists, kind(), true);
        } else if ((m_flags & ~F::dfCommandMask) == 0) {
            documents.reset(name);
        } else {
            unknown();
        }
        return true;
    default:
        unknown();
    }
}

bool DocumentCommand::runAction(services::DocumentService& documents) const
{
    const std::string& name = m_fileName;
    if (m_flags & ~(F::dfActionMask | kTypeMask)) {
        unknown();
    }
    if (const auto exists = mustExist()) {
        documents.open(name, *exists, kind(), false);
        return true;
    }
    if (m_flags & kTypeMask) {
        unknown();
    }
    switch (m_flags & F::dfActionMask) {
    case F::dfClose:
        documents.close(name, false);
        return true;
    case F::dfCloseAll:
        documents.closeAll();
        return true;
    case F::dfSave:
        documents.save(name);
        return true;
    case F::dfSaveAs:
    case F::dfSaveAsOption:
        documents.saveAs(name, text("file name to save as"));
        return true;
    case F::dfSaveAsPrompt:
        throw AnalyzerError(AnalyzerError::Kind::NotAvailable,
                            "saving as with a prompt needs a user interface, which this Quillon has not");
    case F::dfCloseDiscard:
        documents.close(name, true);
        return true;
    default:
        unknown();
    }
}

bool DocumentCommand::runMarker(services::DocumentService& documents) const
{
    switch (m_flags) {
    case F::dfSetMarker:
        documents.setMarker(m_fileName, m_number);
        return true;
    case F::dfClearMarker:
        documents.clearMarkers(m_fileName);
        return true;
    case F::dfSetFocus:
        documents.isActive(m_fileName); // the document must be open; a window without screen has no focus
        return true;
    default:
        unknown();
    }
}

bool DocumentCommand::runOnTerminal(services::DocumentService& documents) const
{
    const DWORD action = m_flags & F::dfActionMask;
    switch (m_flags & F::dfCommandMask) {
    case 0:
        break;
    case F::dfStart:
        documents.startTerminal();
        return true;
    case F::dfStop:
        return documents.stopTerminal();
    case F::dfIsActive:
        return documents.isTerminalActive();
    default:
        unknown();
    }
    if ((m_flags & ~(kTerminalMask | F::dfActionMask)) != 0) {
        unknown();
    }
    switch (action) {
    case F::dfOpenNew:
    case F::dfOpenFile:
    case F::dfOpenDefault:
    case F::dfOpenNewFile:
        documents.openTerminal();
        return true;
    case F::dfClose:
    case F::dfCloseDiscard:
        documents.closeTerminal();
        return true;
    case F::dfSaveAs:
    case F::dfSaveAsOption:
        documents.saveTerminalAs(text("file name to save the terminal as"));
        return true;
    case F::dfSave:
        throw AnalyzerError(AnalyzerError::Kind::InvalidArgument, "the terminal has no file: save it as a file");
    default:
        unknown();
    }
}

} // namespace quillon::com
