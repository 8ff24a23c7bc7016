#include "CTestTrace.h"

#include "CSectionSetters.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IllegalArgumentException.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestTrace::KEY_RUN_MODE = "runMode";
const char* const CTestTrace::KEY_DOCUMENT = "document";
const char* const CTestTrace::KEY_OPEN_MODE = "openMode";
const char* const CTestTrace::KEY_SAVE_AFTER_TEST = "isSaveAfterTest";
const char* const CTestTrace::KEY_CLOSE_AFTER_TEST = "isCloseAfterTest";
const char* const CTestTrace::KEY_TRIGGER = "trigger";
const char* const CTestTrace::KEY_EXPORT_FORMAT = "exportFormat";
const char* const CTestTrace::KEY_EXPORT_FILE = "exportFile";

namespace {

std::string eventText(const yaml_event_t& event)
{
    return CYAMLScalar(event).getValue();
}

} // namespace

CTestTrace::CTestTrace(ITestParserEventReceiver* parent) : m_parent(parent)
{
}

CTestTrace& CTestTrace::operator=(const CTestTrace& other)
{
    // Everything but the parent: this object keeps returning to its own owner.
    m_main = other.m_main;
    m_runMode = other.m_runMode;
    m_documentFileName = other.m_documentFileName;
    m_openMode = other.m_openMode;
    m_saveAfterTest = other.m_saveAfterTest;
    m_closeAfterTest = other.m_closeAfterTest;
    m_triggerName = other.m_triggerName;
    m_exportFormat = other.m_exportFormat;
    m_exportFileName = other.m_exportFileName;
    m_state = other.m_state;
    m_key = other.m_key;
    return *this;
}

ITestParserEventReceiver* CTestTrace::mappingStart(const yaml_event_t& event)
{
    if (m_state != BEFORE_BLOCK) {
        throw ParserException(KX_POS, "No mappings allowed in the main section!");
    }
    m_main = CYAMLMap(event);
    m_state = IN_BLOCK;
    // A block read without "runMode" records: the mode reads "start" and is not written.
    m_runMode.setDefault(rmStart);
    return this;
}

ITestParserEventReceiver* CTestTrace::mappingKey(const yaml_event_t& event)
{
    const std::string text = eventText(event);
    if (m_state != IN_BLOCK) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(text, m_state));
    }
    m_key = text;
    return this;
}

ITestParserEventReceiver* CTestTrace::mappingValue(const yaml_event_t& event)
{
    if (m_state != IN_BLOCK) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(m_key, m_state));
    }
    if (m_key == KEY_RUN_MODE) {
        m_runMode = CYAMLEnum<ERunMode>(event);
    } else if (m_key == KEY_DOCUMENT) {
        m_documentFileName = CYAMLScalar(event);
    } else if (m_key == KEY_OPEN_MODE) {
        CYAMLScalar openMode(event);
        CSectionSetters::verifyOpenMode(openMode.getValue(), "trace");
        m_openMode = openMode;
    } else if (m_key == KEY_SAVE_AFTER_TEST) {
        m_saveAfterTest = CYAMLBool(event);
    } else if (m_key == KEY_CLOSE_AFTER_TEST) {
        m_closeAfterTest = CYAMLBool(event);
    } else if (m_key == KEY_TRIGGER) {
        m_triggerName = CYAMLScalar(event);
    } else if (m_key == KEY_EXPORT_FORMAT) {
        m_exportFormat = CYAMLEnum<EExport>(event);
    } else if (m_key == KEY_EXPORT_FILE) {
        m_exportFileName = CYAMLScalar(event);
    } else {
        throw ParserException(KX_POS, "Unknown tag in the main section of 'trace': " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CTestTrace::mappingEnd()
{
    return m_parent;
}

ITestParserEventReceiver* CTestTrace::sequenceStart(const yaml_event_t&)
{
    throw ParserException(KX_POS, "Sequence not allowed in 'trace' section!");
}

ITestParserEventReceiver* CTestTrace::sequenceValue(const yaml_event_t& event)
{
    throw ParserException(KX_POS, "Sequence scalar not allowed in 'trace' section: " + eventText(event));
}

ITestParserEventReceiver* CTestTrace::sequenceEnd()
{
    throw ParserException(KX_POS, "Sequence not allowed in 'trace' section!");
}

void CTestTrace::serialize(std::shared_ptr<IEmitter> emitter)
{
    emitter->writeMapStart(m_main);
    emitter->writeMappingPair(KEY_RUN_MODE, m_runMode);
    emitter->writeMappingPair(KEY_DOCUMENT, m_documentFileName);
    emitter->writeMappingPair(KEY_OPEN_MODE, m_openMode);
    emitter->writeMappingPair(KEY_SAVE_AFTER_TEST, m_saveAfterTest);
    emitter->writeMappingPair(KEY_CLOSE_AFTER_TEST, m_closeAfterTest);
    emitter->writeMappingPair(KEY_TRIGGER, m_triggerName);
    emitter->writeMappingPair(KEY_EXPORT_FORMAT, m_exportFormat);
    emitter->writeMappingPair(KEY_EXPORT_FILE, m_exportFileName);
    emitter->writeMapEnd();
}

void CTestTrace::setRunMode(const std::string& text)
{
    CSectionSetters::setRunModeText(m_runMode, text);
}

void CTestTrace::setRunMode(ERunMode value)
{
    if (value != rmOff && value != rmStart) {
        throw IllegalArgumentException(KX_POS, "Invalid trace 'ERunMode' enum value!");
    }
    m_runMode.setEnum(value);
}

void CTestTrace::setDocumentFileName(const std::string& text)
{
    CYAMLUtil::parseScalar(m_documentFileName, text);
}

void CTestTrace::setTriggerName(const std::string& text)
{
    CYAMLUtil::parseScalar(m_triggerName, text);
}

void CTestTrace::setExportFileName(const std::string& text)
{
    CYAMLUtil::parseScalar(m_exportFileName, text);
}

void CTestTrace::setExportFormat(const std::string& text)
{
    // Only the text changes: readers of the format use the text.
    CYAMLUtil::parseScalar(m_exportFormat, text);
}

void CTestTrace::setOpenMode(const std::string& text)
{
    if (!text.empty()) {
        CSectionSetters::verifyOpenMode(text, "trace");
    }
    CYAMLUtil::parseScalar(m_openMode, text);
}

void CTestTrace::setSaveAfterTest(bool isSave)
{
    m_saveAfterTest.setBool(isSave);
}

void CTestTrace::setCloseAfterTest(bool isClose)
{
    m_closeAfterTest.setBool(isClose);
}

void CTestTrace::clearSaveAfterTest()
{
    m_saveAfterTest.setDefault(false);
}

void CTestTrace::clearCloseAfterTest()
{
    m_closeAfterTest.setDefault(false);
}

bool CTestTrace::isEmpty() const
{
    return m_runMode.isEmpty() && m_documentFileName.isEmpty() && m_openMode.isEmpty() &&
           m_saveAfterTest.isEmpty() && m_closeAfterTest.isEmpty() && m_triggerName.isEmpty() &&
           m_exportFormat.isEmpty() && m_exportFileName.isEmpty();
}

} // namespace kestrix
