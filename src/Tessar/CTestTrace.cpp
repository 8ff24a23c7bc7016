#include "CTestTrace.h"

#include "CSectionSetters.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IllegalArgumentException.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestTrace::KEY_RUN_MODE = "runMode";
const char* const CTestTrace::KEY_DOCUMENT = CAnalyzerDocument<EExport>::KEY_DOCUMENT;
const char* const CTestTrace::KEY_OPEN_MODE = CAnalyzerDocument<EExport>::KEY_OPEN_MODE;
const char* const CTestTrace::KEY_SAVE_AFTER_TEST = CAnalyzerDocument<EExport>::KEY_SAVE_AFTER_TEST;
const char* const CTestTrace::KEY_CLOSE_AFTER_TEST = CAnalyzerDocument<EExport>::KEY_CLOSE_AFTER_TEST;
const char* const CTestTrace::KEY_TRIGGER = "trigger";
const char* const CTestTrace::KEY_EXPORT_FORMAT = CAnalyzerDocument<EExport>::KEY_EXPORT_FORMAT;
const char* const CTestTrace::KEY_EXPORT_FILE = CAnalyzerDocument<EExport>::KEY_EXPORT_FILE;

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
    m_document = other.m_document;
    m_triggerName = other.m_triggerName;
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
    } else if (m_key == KEY_TRIGGER) {
        m_triggerName = CYAMLScalar(event);
    } else if (!m_document.readValue(m_key, event)) {
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
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_main);
    emitter->writeMappingPair(KEY_RUN_MODE, m_runMode);
    m_document.writeDocument(*emitter);
    emitter->writeMappingPair(KEY_TRIGGER, m_triggerName);
    m_document.writeExport(*emitter);
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
    m_document.setFileName(text);
}

void CTestTrace::setTriggerName(const std::string& text)
{
    CYAMLUtil::parseScalar(m_triggerName, text);
}

void CTestTrace::setExportFileName(const std::string& text)
{
    m_document.setExportFileName(text);
}

void CTestTrace::setExportFormat(const std::string& text)
{
    m_document.setExportFormat(text);
}

void CTestTrace::setOpenMode(const std::string& text)
{
    m_document.setOpenMode(text);
}

void CTestTrace::setSaveAfterTest(bool isSave)
{
    m_document.saveAfterTest().setBool(isSave);
}

void CTestTrace::setCloseAfterTest(bool isClose)
{
    m_document.closeAfterTest().setBool(isClose);
}

void CTestTrace::clearSaveAfterTest()
{
    m_document.saveAfterTest().setDefault(false);
}

void CTestTrace::clearCloseAfterTest()
{
    m_document.closeAfterTest().setDefault(false);
}

bool CTestTrace::isEmpty() const
{
    return m_runMode.isEmpty() && m_triggerName.isEmpty() && m_document.isEmpty();
}

} // namespace kestrix
