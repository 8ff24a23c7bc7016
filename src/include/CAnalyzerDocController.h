#pragma once

#include <memory>
#include <string>

#include "CDocumentController.h"

namespace kestrix {

/// An analyzer document (a trace recording) or a coverage document: a document with start
/// triggers and export.
class CAnalyzerDocController : public CDocumentController {
public:
    /// The `documentType` of the constructor.
    enum EDocumentType { ANALYZER = 0, COVERAGE = 1 };

    /// Export formats of trace documents.
    static const char* const exportTrcAsText;
    static const char* const exportTrcAsCSV;
    static const char* const exportTrcAsBinary;
    /// Export formats of coverage documents.
    static const char* const exportCCAsHTML;
    static const char* const exportCCAsText;
    static const char* const exportCCAsCSV;
    static const char* const exportCCAsXML;
    static const char* const exportCCAsReviewHTML;
    static const char* const exportCCAsReviewText;
    static const char* const exportCCAsXML2;

    /// `documentType` is ANALYZER or COVERAGE; the modes are those of `CDocumentController`.
    CAnalyzerDocController(std::shared_ptr<ConnectionMgr> connectionMgr, int documentType,
                           const std::string& fileName, const std::string& openMode);
    ~CAnalyzerDocController() override;

    bool isActive();
    /// Selects the start trigger of that name.
    void select(const std::string& triggerName);
    void setExportFormat(const std::string& format);
    void exportAs(int exportType, const std::string& fileName, DWORD option);
    /// Sets the format, then exports with the option 0xFFFFFFFF.
    void exportAs(int exportType, const std::string& fileName, const std::string& format);
    void exportAsAndLaunchViewer(int exportType, const std::string& fileName, DWORD option);
    /// Analyzer documents have no markers: only a comment in the script.
    void setMarker();

protected:
    /// Type bits of the "w" and "a" openings.
    DWORD m_documentType = 0;

private:
    static std::string method(const char* operation);
};

} // namespace kestrix
