#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CAnalyzerDocument.h"
#include "CTestCoverageStatistics.h"
#include "CYAMLBool.h"
#include "CYAMLEnum.h"
#include "CYAMLEnumTables.h"
#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"
#include "ITestParserEventReceiver.h"

namespace kestrix {

class IEmitter;

/// The "coverage" block of a test: the coverage analyzer's document, its open mode, what is
/// saved and exported after the test, and the statistics expected per function.
class CTestCoverage : public ITestParserEventReceiver {
public:
    enum ERunMode { rmOff = 0, rmStart = 1, rmResume = 2 };
    enum EExport { eHTML = 0, eText = 1, eCSV = 2, eXML = 3, eReviewHTML = 4, eReviewText = 5, eXML2 = 6 };

    static const char* const KEY_RUN_MODE;
    static const char* const KEY_DOCUMENT;
    static const char* const KEY_OPEN_MODE;
    static const char* const KEY_SAVE_AFTER_TEST;
    static const char* const KEY_CLOSE_AFTER_TEST;
    static const char* const KEY_RANGESET;
    static const char* const KEY_EXPORT_FORMAT;
    static const char* const KEY_EXPORT_FILE;
    static const char* const KEY_DECISION_COVERAGE;
    static const char* const KEY_BITMAP_FILE;
    static const char* const KEY_STATISTICS;

    /// `parent` takes the events after this block; not owned.
    explicit CTestCoverage(ITestParserEventReceiver* parent);
    /// Deep copy: each statistics item is copied into a new object that belongs to the copy.
    CTestCoverage(const CTestCoverage& other);
    /// The same deep copy; the owner (parent) of this object stays.
    CTestCoverage& operator=(const CTestCoverage& other);
    virtual ~CTestCoverage() = default;

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
    std::string getRangesetName() const { return m_rangeset.getValue(); }
    /// The text of the format, as written.
    std::string getExportFormat() const { return m_document.getExportFormat(); }
    std::string getExportFileName() const { return m_document.getExportFileName(); }
    std::string getBitmapFileName() const { return m_bitmapFileName.getValue(); }

    // Text setters take YAML text: quotes are those of a file.
    void setDocumentFileName(const std::string& text);
    /// "u", "r", "w", "a", or empty to clear the field.
    void setOpenMode(const std::string& text);
    void setRangesetName(const std::string& text);
    /// Stored as text; the word is not checked against the table.
    void setExportFormat(const std::string& text);
    void setExportFileName(const std::string& text);
    void setBitmapFileName(const std::string& text);

    bool isSaveAfterTest() const { return m_document.saveAfterTest().getBool(); }
    bool isCloseAfterTest() const { return m_document.closeAfterTest().getBool(); }
    bool isDecisionCoverage() const { return m_decisionCoverage.getBool(); }
    /// The text as read or set, such as "yes"; empty when not set.
    std::string getSaveAfterTest() const { return m_document.saveAfterTest().getValue(); }
    std::string getCloseAfterTest() const { return m_document.closeAfterTest().getValue(); }
    std::string getDecisionCoverage() const { return m_decisionCoverage.getValue(); }
    void setSaveAfterTest(bool isSave);
    void setCloseAfterTest(bool isClose);
    void setDecisionCoverage(bool isDecision);
    /// Not written afterwards, and reads false.
    void clearSaveAfterTest();
    void clearCloseAfterTest();
    void clearDecisionCoverage();

    /// True when none of the scalar fields has a text; the statistics list does not count.
    bool isEmpty() const;

    // The statistics list. An index out of range raises IndexOutOfBoundsException.
    int getStatisticsSize() const { return static_cast<int>(m_statistics.size()); }
    std::shared_ptr<CTestCoverageStatistics> getStatistics(int index) const;
    /// Appends a new empty item that belongs to this section.
    std::shared_ptr<CTestCoverageStatistics> addStatistics();
    void removeStatistics(int index);
    void swapStatistics(int first, int second);

private:
    enum ESection { BEFORE_BLOCK = 0, IN_BLOCK = 1, AFTER_STATISTICS_KEY = 2, IN_STATISTICS = 3 };

    /// Whether `key` names one of the scalar fields.
    static bool isScalarKey(const std::string& key);
    void checkIndex(int index) const;
    void copyStatistics(const CTestCoverage& other);

    CYAMLMap m_main;
    CYAMLEnum<ERunMode> m_runMode;
    // A file may leave the open mode empty here.
    CAnalyzerDocument<EExport> m_document{"coverage", true};
    CYAMLScalar m_rangeset;
    CYAMLBool m_decisionCoverage;
    CYAMLScalar m_bitmapFileName;
    CYAMLSequence m_statisticsBlock;
    std::vector<std::shared_ptr<CTestCoverageStatistics>> m_statistics;
    ITestParserEventReceiver* m_parent;
    int m_section = BEFORE_BLOCK;
    std::string m_key;
};

KX_YAML_ENUM_TABLE(CTestCoverage::ERunMode, CYAMLEnumTables::COVERAGE_RUN_MODE)
KX_YAML_ENUM_TABLE(CTestCoverage::EExport, CYAMLEnumTables::COVERAGE_EXPORT)

} // namespace kestrix
