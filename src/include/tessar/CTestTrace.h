#pragma once

#include <memory>
#include <string>

#include "CAnalyzerDocument.h"
#include "CYAMLEnum.h"
#include "CYAMLEnumTables.h"
#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

class IEmitter;

/// The "trace" block of a test: whether the trace analyzer records, its document, what
/// happens to the document after the test, the trigger and the export of the recording.
class CTestTrace : public ITestParserEventReceiver {
public:
    enum ERunMode { rmOff = 0, rmStart = 1 };
    enum EExport { eText = 0, eCSV = 1, eBinary = 2 };

    static const char* const KEY_RUN_MODE;
    static const char* const KEY_DOCUMENT;
    static const char* const KEY_OPEN_MODE;
    static const char* const KEY_SAVE_AFTER_TEST;
    static const char* const KEY_CLOSE_AFTER_TEST;
    static const char* const KEY_TRIGGER;
    static const char* const KEY_EXPORT_FORMAT;
    static const char* const KEY_EXPORT_FILE;

    /// `parent` takes the events after this block; not owned.
    explicit CTestTrace(ITestParserEventReceiver* parent);
    CTestTrace(const CTestTrace& other) = default;
    /// Copies the values and the reading state; the owner (parent) of this object stays.
    CTestTrace& operator=(const CTestTrace& other);
    virtual ~CTestTrace() = default;

    ITestParserEventReceiver* mappingStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingKey(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* mappingEnd() override;
    ITestParserEventReceiver* sequenceStart(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceValue(const yaml_event_t& event) override;
    ITestParserEventReceiver* sequenceEnd() override;
    void serialize(std::shared_ptr<IEmitter> emitter) override;

    /// 0 for a new object; 1 once a block was read that did not name "runMode".
    ERunMode getRunMode() const { return m_runMode.getEnum(); }
    bool isDefaultRunMode() const { return m_runMode.getValue().empty(); }
    /// An empty text empties the field; any other must be a word of the table.
    void setRunMode(const std::string& text);
    void setRunMode(ERunMode value);

    std::string getDocumentFileName() const { return m_document.getFileName(); }
    std::string getOpenMode() const { return m_document.getOpenMode(); }
    std::string getTriggerName() const { return m_triggerName.getValue(); }
    std::string getExportFileName() const { return m_document.getExportFileName(); }
    /// The text of the format, as written.
    std::string getExportFormat() const { return m_document.getExportFormat(); }

    // Text setters take YAML text: quotes are those of a file.
    void setDocumentFileName(const std::string& text);
    void setTriggerName(const std::string& text);
    void setExportFileName(const std::string& text);
    /// Stored as text; the word is not checked against the table.
    void setExportFormat(const std::string& text);
    /// "u", "r", "w", "a", or empty to clear the field.
    void setOpenMode(const std::string& text);

    bool isSaveAfterTest() const { return m_document.saveAfterTest().getBool(); }
    bool isCloseAfterTest() const { return m_document.closeAfterTest().getBool(); }
    /// The text as read or set, such as "yes"; empty when not set.
    std::string getSaveAfterTest() const { return m_document.saveAfterTest().getValue(); }
    std::string getCloseAfterTest() const { return m_document.closeAfterTest().getValue(); }
    void setSaveAfterTest(bool isSave);
    void setCloseAfterTest(bool isClose);
    /// Not written afterwards, and reads false.
    void clearSaveAfterTest();
    void clearCloseAfterTest();

    /// True when no field has a text; such a block is not written by its owner.
    bool isEmpty() const;

private:
    enum EState { BEFORE_BLOCK = 0, IN_BLOCK = 1 };

    CYAMLMap m_main;
    CYAMLEnum<ERunMode> m_runMode;
    CAnalyzerDocument<EExport> m_document{"trace", false};
    CYAMLScalar m_triggerName;
    ITestParserEventReceiver* m_parent;
    int m_state = BEFORE_BLOCK;
    std::string m_key;
};

KX_YAML_ENUM_TABLE(CTestTrace::ERunMode, CYAMLEnumTables::TRACE_RUN_MODE)
KX_YAML_ENUM_TABLE(CTestTrace::EExport, CYAMLEnumTables::TRACE_EXPORT)

} // namespace kestrix
