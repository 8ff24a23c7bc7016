#include "CTestCoverage.h"

#include <utility>

#include "CSectionSetters.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IllegalArgumentException.h"
#include "IndexOutOfBoundsException.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestCoverage::KEY_RUN_MODE = "runMode";
const char* const CTestCoverage::KEY_DOCUMENT = CAnalyzerDocument<EExport>::KEY_DOCUMENT;
const char* const CTestCoverage::KEY_OPEN_MODE = CAnalyzerDocument<EExport>::KEY_OPEN_MODE;
const char* const CTestCoverage::KEY_SAVE_AFTER_TEST = CAnalyzerDocument<EExport>::KEY_SAVE_AFTER_TEST;
const char* const CTestCoverage::KEY_CLOSE_AFTER_TEST = CAnalyzerDocument<EExport>::KEY_CLOSE_AFTER_TEST;
const char* const CTestCoverage::KEY_RANGESET = "rangeset";
const char* const CTestCoverage::KEY_EXPORT_FORMAT = CAnalyzerDocument<EExport>::KEY_EXPORT_FORMAT;
const char* const CTestCoverage::KEY_EXPORT_FILE = CAnalyzerDocument<EExport>::KEY_EXPORT_FILE;
const char* const CTestCoverage::KEY_DECISION_COVERAGE = "isDecisionCoverage";
const char* const CTestCoverage::KEY_BITMAP_FILE = "bitmapFile";
const char* const CTestCoverage::KEY_STATISTICS = "statistics";

CTestCoverage::CTestCoverage(ITestParserEventReceiver* parent) : m_parent(parent)
{
}

CTestCoverage::CTestCoverage(const CTestCoverage& other)
    : m_main(other.m_main),
      m_runMode(other.m_runMode),
      m_document(other.m_document),
      m_rangeset(other.m_rangeset),
      m_decisionCoverage(other.m_decisionCoverage),
      m_bitmapFileName(other.m_bitmapFileName),
      m_statisticsBlock(other.m_statisticsBlock),
      m_parent(other.m_parent),
      m_section(other.m_section),
      m_key(other.m_key)
{
    copyStatistics(other);
}

CTestCoverage& CTestCoverage::operator=(const CTestCoverage& other)
{
    if (this == &other) {
        return *this;
    }
    // Everything but the parent: this object keeps returning to its own owner.
    m_main = other.m_main;
    m_runMode = other.m_runMode;
    m_document = other.m_document;
    m_rangeset = other.m_rangeset;
    m_decisionCoverage = other.m_decisionCoverage;
    m_bitmapFileName = other.m_bitmapFileName;
    m_statisticsBlock = other.m_statisticsBlock;
    m_section = other.m_section;
    m_key = other.m_key;
    copyStatistics(other);
    return *this;
}

void CTestCoverage::copyStatistics(const CTestCoverage& other)
{
    std::vector<std::shared_ptr<CTestCoverageStatistics>> items;
    items.reserve(other.m_statistics.size());
    for (const auto& item : other.m_statistics) {
        items.push_back(std::make_shared<CTestCoverageStatistics>(*item, this));
    }
    m_statistics.swap(items);
}

bool CTestCoverage::isScalarKey(const std::string& key)
{
    return key == KEY_RUN_MODE || key == KEY_RANGESET || key == KEY_DECISION_COVERAGE ||
           key == KEY_BITMAP_FILE || CAnalyzerDocument<EExport>::isKey(key);
}

ITestParserEventReceiver* CTestCoverage::mappingStart(const yaml_event_t& event)
{
    if (m_section == BEFORE_BLOCK) {
        m_main = CYAMLMap(event);
        m_section = IN_BLOCK;
        // A block read without "runMode" records: the mode reads "start" and is not written.
        m_runMode.setDefault(rmStart);
        return this;
    }
    if (m_section == IN_STATISTICS) {
        auto item = std::make_shared<CTestCoverageStatistics>(this, event);
        m_statistics.push_back(item);
        return item.get();
    }
    throw ParserException(KX_POS, "No mappings allowed in the main section!");
}

ITestParserEventReceiver* CTestCoverage::mappingKey(const yaml_event_t& event)
{
    const std::string text = CYAMLScalar(event).getValue();
    if (m_section != IN_BLOCK) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(text, m_section));
    }
    m_key = text;
    if (isScalarKey(m_key)) {
        return this;
    }
    if (m_key == KEY_STATISTICS) {
        m_section = AFTER_STATISTICS_KEY;
        return this;
    }
    throw ParserException(KX_POS, "Invalid item in coverage section: " + m_key);
}

ITestParserEventReceiver* CTestCoverage::mappingValue(const yaml_event_t& event)
{
    if (m_section != IN_BLOCK) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(m_key, m_section));
    }
    if (m_key == KEY_RUN_MODE) {
        m_runMode = CYAMLEnum<ERunMode>(event);
    } else if (m_key == KEY_RANGESET) {
        m_rangeset = CYAMLScalar(event);
    } else if (m_key == KEY_DECISION_COVERAGE) {
        m_decisionCoverage = CYAMLBool(event);
    } else if (m_key == KEY_BITMAP_FILE) {
        m_bitmapFileName = CYAMLScalar(event);
    } else if (!m_document.readValue(m_key, event)) {
        throw ParserException(KX_POS, "Unknown tag in the 'coverage' section: " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CTestCoverage::mappingEnd()
{
    if (m_section == IN_BLOCK) {
        if (!m_document.hasFileName()) {
            throw ParserException(KX_POS, "At least 'document' tag should be specified for coverage!");
        }
        return m_parent;
    }
    if (m_section == IN_STATISTICS) {
        return this;
    }
    throw ParserException(KX_POS, "Unexpected end of mapping in the coverage section: " + std::to_string(m_section));
}

ITestParserEventReceiver* CTestCoverage::sequenceStart(const yaml_event_t& event)
{
    if (m_section != AFTER_STATISTICS_KEY) {
        throw ParserException(KX_POS, "Sequence not allowed in 'coverage' section: " + m_key);
    }
    m_statisticsBlock = CYAMLSequence(event);
    m_section = IN_STATISTICS;
    // The first mapping of the list fills this item; the later ones make their own.
    auto item = std::make_shared<CTestCoverageStatistics>(this);
    m_statistics.push_back(item);
    return item.get();
}

ITestParserEventReceiver* CTestCoverage::sequenceValue(const yaml_event_t& event)
{
    throw ParserException(KX_POS, "Sequence scalar not allowed in 'coverage' section: " + CYAMLScalar(event).getValue());
}

ITestParserEventReceiver* CTestCoverage::sequenceEnd()
{
    if (m_section != IN_STATISTICS) {
        throw ParserException(KX_POS, "Sequence not allowed in 'coverage' section: " + std::to_string(m_section));
    }
    m_section = IN_BLOCK;
    return this;
}

void CTestCoverage::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_main);
    emitter->writeMappingPair(KEY_RUN_MODE, m_runMode);
    m_document.writeDocument(*emitter);
    emitter->writeMappingPair(KEY_RANGESET, m_rangeset);
    m_document.writeExport(*emitter);
    emitter->writeMappingPair(KEY_DECISION_COVERAGE, m_decisionCoverage);
    emitter->writeMappingPair(KEY_BITMAP_FILE, m_bitmapFileName);
    if (!m_statistics.empty()) {
        emitter->write(std::string(KEY_STATISTICS));
        emitter->writeSequenceStart(m_statisticsBlock);
        for (const auto& item : m_statistics) {
            item->serialize(emitter);
        }
        emitter->writeSequenceEnd();
    }
    emitter->writeMapEnd();
}

void CTestCoverage::setRunMode(const std::string& text)
{
    CSectionSetters::setRunModeText(m_runMode, text);
}

void CTestCoverage::setRunMode(ERunMode value)
{
    if (value != rmOff && value != rmStart && value != rmResume) {
        throw IllegalArgumentException(KX_POS, "Invalid coverage 'ERunMode' enum value!");
    }
    m_runMode.setEnum(value);
}

void CTestCoverage::setDocumentFileName(const std::string& text)
{
    m_document.setFileName(text);
}

void CTestCoverage::setOpenMode(const std::string& text)
{
    m_document.setOpenMode(text);
}

void CTestCoverage::setRangesetName(const std::string& text)
{
    CYAMLUtil::parseScalar(m_rangeset, text);
}

void CTestCoverage::setExportFormat(const std::string& text)
{
    m_document.setExportFormat(text);
}

void CTestCoverage::setExportFileName(const std::string& text)
{
    m_document.setExportFileName(text);
}

void CTestCoverage::setBitmapFileName(const std::string& text)
{
    CYAMLUtil::parseScalar(m_bitmapFileName, text);
}

void CTestCoverage::setSaveAfterTest(bool isSave)
{
    m_document.saveAfterTest().setBool(isSave);
}

void CTestCoverage::setCloseAfterTest(bool isClose)
{
    m_document.closeAfterTest().setBool(isClose);
}

void CTestCoverage::setDecisionCoverage(bool isDecision)
{
    m_decisionCoverage.setBool(isDecision);
}

void CTestCoverage::clearSaveAfterTest()
{
    m_document.saveAfterTest().setDefault(false);
}

void CTestCoverage::clearCloseAfterTest()
{
    m_document.closeAfterTest().setDefault(false);
}

void CTestCoverage::clearDecisionCoverage()
{
    m_decisionCoverage.setDefault(false);
}

bool CTestCoverage::isEmpty() const
{
    return m_runMode.isEmpty() && m_rangeset.isEmpty() && m_decisionCoverage.isEmpty() &&
           m_bitmapFileName.isEmpty() && m_document.isEmpty();
}

void CTestCoverage::checkIndex(int index) const
{
    // A bad index is refused rather than left to undefined behaviour.
    if (index < 0 || index >= getStatisticsSize()) {
        throw IndexOutOfBoundsException(KX_POS, "No coverage statistics at the given index exists!")
            .add("index", index)
            .add("noOfStatistics", getStatisticsSize());
    }
}

std::shared_ptr<CTestCoverageStatistics> CTestCoverage::getStatistics(int index) const
{
    checkIndex(index);
    return m_statistics[static_cast<size_t>(index)];
}

std::shared_ptr<CTestCoverageStatistics> CTestCoverage::addStatistics()
{
    auto item = std::make_shared<CTestCoverageStatistics>(this);
    m_statistics.push_back(item);
    return item;
}

void CTestCoverage::removeStatistics(int index)
{
    checkIndex(index);
    m_statistics.erase(m_statistics.begin() + index);
}

void CTestCoverage::swapStatistics(int first, int second)
{
    checkIndex(first);
    checkIndex(second);
    std::swap(m_statistics[static_cast<size_t>(first)], m_statistics[static_cast<size_t>(second)]);
}

} // namespace kestrix
