#pragma once

#include <string>

#include "CSectionSetters.h"
#include "CYAMLBool.h"
#include "CYAMLEnum.h"
#include "CYAMLScalar.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"

namespace kestrix {

/// The analyzer document of a trace or coverage block: its file, open mode, whether it is
/// saved and closed after the test, and the export of the result. `EExport` is the export
/// format enumeration of the owning section, bound to its table by KX_YAML_ENUM_TABLE.
/// The owner keeps its other keys and decides where each group of keys is written.
template <typename EExport>
class CAnalyzerDocument {
public:
    static constexpr const char* KEY_DOCUMENT = "document";
    static constexpr const char* KEY_OPEN_MODE = "openMode";
    static constexpr const char* KEY_SAVE_AFTER_TEST = "isSaveAfterTest";
    static constexpr const char* KEY_CLOSE_AFTER_TEST = "isCloseAfterTest";
    static constexpr const char* KEY_EXPORT_FORMAT = "exportFormat";
    static constexpr const char* KEY_EXPORT_FILE = "exportFile";

    /// `analyzer` ("trace", "coverage") is named in the open-mode refusal; `isEmptyModeRead`
    /// tells whether a file may give an empty open mode. Setters always accept an empty mode.
    CAnalyzerDocument(const char* analyzer, bool isEmptyModeRead)
        : m_analyzer(analyzer), m_isEmptyModeRead(isEmptyModeRead)
    {
    }

    /// Whether `key` names one of these fields.
    static bool isKey(const std::string& key)
    {
        return key == KEY_DOCUMENT || key == KEY_OPEN_MODE || key == KEY_SAVE_AFTER_TEST ||
               key == KEY_CLOSE_AFTER_TEST || key == KEY_EXPORT_FORMAT || key == KEY_EXPORT_FILE;
    }

    /// Stores the value of a file's `key`, replacing an earlier one; false for a key that is
    /// not one of these fields. A refused value leaves the field as it was.
    bool readValue(const std::string& key, const yaml_event_t& event)
    {
        if (key == KEY_DOCUMENT) {
            m_fileName = CYAMLScalar(event);
        } else if (key == KEY_OPEN_MODE) {
            CYAMLScalar openMode(event);
            if (!m_isEmptyModeRead || !openMode.getValue().empty()) {
                CSectionSetters::verifyOpenMode(openMode.getValue(), m_analyzer);
            }
            m_openMode = openMode;
        } else if (key == KEY_SAVE_AFTER_TEST) {
            m_saveAfterTest = CYAMLBool(event);
        } else if (key == KEY_CLOSE_AFTER_TEST) {
            m_closeAfterTest = CYAMLBool(event);
        } else if (key == KEY_EXPORT_FORMAT) {
            m_exportFormat = CYAMLEnum<EExport>(event);
        } else if (key == KEY_EXPORT_FILE) {
            m_exportFileName = CYAMLScalar(event);
        } else {
            return false;
        }
        return true;
    }

    /// Writes the non-empty document, open mode, save and close keys, in that order.
    void writeDocument(IEmitter& emitter) const
    {
        emitter.writeMappingPair(KEY_DOCUMENT, m_fileName);
        emitter.writeMappingPair(KEY_OPEN_MODE, m_openMode);
        emitter.writeMappingPair(KEY_SAVE_AFTER_TEST, m_saveAfterTest);
        emitter.writeMappingPair(KEY_CLOSE_AFTER_TEST, m_closeAfterTest);
    }

    /// Writes the non-empty export format and export file keys, in that order.
    void writeExport(IEmitter& emitter) const
    {
        emitter.writeMappingPair(KEY_EXPORT_FORMAT, m_exportFormat);
        emitter.writeMappingPair(KEY_EXPORT_FILE, m_exportFileName);
    }

    bool isEmpty() const
    {
        return m_fileName.isEmpty() && m_openMode.isEmpty() && m_saveAfterTest.isEmpty() &&
               m_closeAfterTest.isEmpty() && m_exportFormat.isEmpty() && m_exportFileName.isEmpty();
    }

    std::string getFileName() const { return m_fileName.getValue(); }
    std::string getOpenMode() const { return m_openMode.getValue(); }
    std::string getExportFormat() const { return m_exportFormat.getValue(); }
    std::string getExportFileName() const { return m_exportFileName.getValue(); }
    bool hasFileName() const { return !m_fileName.isEmpty(); }

    // Text setters take YAML text: quotes are those of a file.
    void setFileName(const std::string& text) { CYAMLUtil::parseScalar(m_fileName, text); }
    void setExportFileName(const std::string& text) { CYAMLUtil::parseScalar(m_exportFileName, text); }
    /// Only the text changes: readers of the format use the text, which is not checked.
    void setExportFormat(const std::string& text) { CYAMLUtil::parseScalar(m_exportFormat, text); }
    /// "u", "r", "w", "a", or empty to clear the field.
    void setOpenMode(const std::string& text)
    {
        if (!text.empty()) {
            CSectionSetters::verifyOpenMode(text, m_analyzer);
        }
        CYAMLUtil::parseScalar(m_openMode, text);
    }

    // The bool fields, for the owner's getters, setters and clear operations.
    CYAMLBool& saveAfterTest() { return m_saveAfterTest; }
    CYAMLBool& closeAfterTest() { return m_closeAfterTest; }
    const CYAMLBool& saveAfterTest() const { return m_saveAfterTest; }
    const CYAMLBool& closeAfterTest() const { return m_closeAfterTest; }

private:
    const char* m_analyzer;
    bool m_isEmptyModeRead;
    CYAMLScalar m_fileName;
    CYAMLScalar m_openMode;
    CYAMLBool m_saveAfterTest;
    CYAMLBool m_closeAfterTest;
    CYAMLEnum<EExport> m_exportFormat;
    CYAMLScalar m_exportFileName;
};

} // namespace kestrix
