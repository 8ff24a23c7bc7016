#include "CTestReportConfig.h"

#include "CSectionSetters.h"
#include "CUtil.h"
#include "CYAMLDocumentWriter.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IllegalStateException.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestReportConfig::SECTION_KEY = "reportConfig";
const char* const CTestReportConfig::KEY_REPORT_CONTENTS = "reportContents";
const char* const CTestReportConfig::KEY_OUT_FORMAT = "outFormat";
const char* const CTestReportConfig::KEY_FILE_NAME = "fileName";
const char* const CTestReportConfig::KEY_XSLT_FULL = "xsltFull";
const char* const CTestReportConfig::KEY_XSLT_ERRORS = "xsltErrors";
const char* const CTestReportConfig::KEY_INCLUDE_TEST_SPEC = "isIncludeTestSpec";
const char* const CTestReportConfig::KEY_USE_CUSTOM_TIME = "useCustomTime";
const char* const CTestReportConfig::KEY_TEST_INFO = "testInfo";

namespace {

std::string scalarText(const yaml_event_t& event)
{
    return std::string(reinterpret_cast<const char*>(event.data.scalar.value), event.data.scalar.length);
}

} // namespace

CTestReportConfig::CTestReportConfig(ITestParserEventReceiver* parent) : m_parent(parent) {}

CTestReportConfig::CTestReportConfig() : m_parent(nullptr) {}

CTestReportConfig::~CTestReportConfig() = default;

void CTestReportConfig::assign(const CTestReportConfig& other)
{
    if (this == &other) {
        return;
    }
    m_main = other.m_main;
    m_reportContents = other.m_reportContents;
    m_outFormat = other.m_outFormat;
    m_fileName = other.m_fileName;
    m_xsltFull = other.m_xsltFull;
    m_xsltErrors = other.m_xsltErrors;
    m_isIncludeTestSpec = other.m_isIncludeTestSpec;
    m_isUseCustomTime = other.m_isUseCustomTime;
    m_userInfo = other.m_userInfo;
}

template <typename T>
void CTestReportConfig::assignOnce(T& field, const yaml_event_t& event) const
{
    if (!field.isEmpty()) {
        throw ParserException(KX_POS, "Data already defined in this specification: " + m_key);
    }
    field = T(event);
}

ITestParserEventReceiver* CTestReportConfig::mappingStart(const yaml_event_t& event)
{
    if (m_state != BEFORE_MAPPING) {
        throw ParserException(KX_POS, "Mapping not allowed or invalid tag!").add("tag", m_key);
    }
    m_main = CYAMLMap(event);
    m_state = IN_MAPPING;
    return this;
}

ITestParserEventReceiver* CTestReportConfig::mappingKey(const yaml_event_t& event)
{
    const std::string key = scalarText(event);
    if (m_state != IN_MAPPING) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(key, m_state));
    }
    m_key = key;
    if (key == KEY_TEST_INFO) {
        if (!m_userInfo.isEmpty()) {
            throw ParserException(KX_POS, std::string("Data already defined in this specification: ") + KEY_TEST_INFO);
        }
        m_mapReceiver.reset(new CYAMLMapReceiver(this, &m_userInfo));
        return m_mapReceiver.get();
    }
    // Other keys are judged with their value.
    return this;
}

ITestParserEventReceiver* CTestReportConfig::mappingValue(const yaml_event_t& event)
{
    if (m_state != IN_MAPPING) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(m_key, m_state));
    }
    if (m_key == KEY_REPORT_CONTENTS) {
        assignOnce(m_reportContents, event);
    } else if (m_key == KEY_OUT_FORMAT) {
        assignOnce(m_outFormat, event);
    } else if (m_key == KEY_FILE_NAME) {
        assignOnce(m_fileName, event);
    } else if (m_key == KEY_XSLT_FULL) {
        assignOnce(m_xsltFull, event);
    } else if (m_key == KEY_XSLT_ERRORS) {
        assignOnce(m_xsltErrors, event);
    } else if (m_key == KEY_INCLUDE_TEST_SPEC) {
        assignOnce(m_isIncludeTestSpec, event);
    } else if (m_key == KEY_USE_CUSTOM_TIME) {
        assignOnce(m_isUseCustomTime, event);
    } else {
        throw ParserException(KX_POS, "Unknown tag in the main section of 'reportConfig': " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CTestReportConfig::mappingEnd()
{
    return m_parent;
}

ITestParserEventReceiver* CTestReportConfig::sequenceStart(const yaml_event_t&)
{
    throw ParserException(KX_POS, "Sequence not allowed in 'reportConfig' section!");
}

ITestParserEventReceiver* CTestReportConfig::sequenceValue(const yaml_event_t&)
{
    throw ParserException(KX_POS, "Sequence scalar not allowed in 'reportConfig' section!");
}

ITestParserEventReceiver* CTestReportConfig::sequenceEnd()
{
    throw ParserException(KX_POS, "Sequence end not allowed in 'reportConfig' section!");
}

void CTestReportConfig::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    writeTo(*emitter);
}

void CTestReportConfig::writeTo(IEmitter& emitter) const
{
    if (isEmpty()) {
        return;
    }
    emitter.write(SECTION_KEY);
    // The block's own attributes are not used for writing.
    emitter.mapStart(IEmitter::STYLE_ANY);
    emitter.writeMappingPair(KEY_REPORT_CONTENTS, m_reportContents);
    emitter.writeMappingPair(KEY_OUT_FORMAT, m_outFormat);
    emitter.writeMappingPair(KEY_FILE_NAME, m_fileName);
    emitter.writeMappingPair(KEY_XSLT_FULL, m_xsltFull);
    emitter.writeMappingPair(KEY_XSLT_ERRORS, m_xsltErrors);
    emitter.writeMappingPair(KEY_INCLUDE_TEST_SPEC, m_isIncludeTestSpec);
    emitter.writeMappingPair(KEY_USE_CUSTOM_TIME, m_isUseCustomTime);
    // Always written in a non-empty section, even as an empty map.
    emitter.write(KEY_TEST_INFO);
    emitter.writeMapOfScalars(m_userInfo);
    emitter.writeMapEnd();
}

bool CTestReportConfig::isEmpty() const
{
    return m_reportContents.isEmpty() && m_outFormat.isEmpty() && m_fileName.isEmpty() && m_xsltFull.isEmpty() &&
           m_xsltErrors.isEmpty() && m_isIncludeTestSpec.isEmpty() && m_isUseCustomTime.isEmpty() &&
           m_userInfo.isEmpty();
}

std::string CTestReportConfig::toString() const
{
    // The section starts with its own key, so it is written inside a root mapping of its own.
    return CYAMLDocumentWriter::toString([this](IEmitter& emitter) {
        emitter.mapStart(IEmitter::STYLE_ANY);
        writeTo(emitter);
        emitter.mapEnd();
    });
}

CTestReportConfig::EReportContents CTestReportConfig::getReportContents() const
{
    return m_reportContents.getEnum();
}

void CTestReportConfig::setReportContents(EReportContents contents)
{
    m_reportContents.setEnum(contents);
}

CTestReportConfig::EOutputFormat CTestReportConfig::getOutputFormat() const
{
    return m_outFormat.getEnum();
}

void CTestReportConfig::setOutputFormat(EOutputFormat format)
{
    m_outFormat.setEnum(format);
}

std::string CTestReportConfig::getFileName() const
{
    return m_fileName.getValue();
}

void CTestReportConfig::setFileName(const std::string& fileName)
{
    CYAMLUtil::parseScalar(m_fileName, fileName);
}

std::string CTestReportConfig::getXsltForFullReport() const
{
    return m_xsltFull.getValue();
}

void CTestReportConfig::setXsltForFullReport(const std::string& fileName)
{
    CYAMLUtil::parseScalar(m_xsltFull, fileName);
}

std::string CTestReportConfig::getXsltForErrors() const
{
    return m_xsltErrors.getValue();
}

void CTestReportConfig::setXsltForErrors(const std::string& fileName)
{
    CYAMLUtil::parseScalar(m_xsltErrors, fileName);
}

std::string CTestReportConfig::getSelectedXsltFileName() const
{
    switch (getReportContents()) {
    case rcFull:
        return getXsltForFullReport();
    case rcErrorsOnly:
        return getXsltForErrors();
    }
    throw IllegalStateException(KX_POS, "Invalid report type! It should be FULL or ERRORS ONLY!")
        .add("reportTypeAsStr", m_reportContents.getValue())
        .add("reportTypeEnum", static_cast<int>(getReportContents()));
}

bool CTestReportConfig::isIncludeTestSpec() const
{
    return m_isIncludeTestSpec.getBool();
}

void CTestReportConfig::setIncludeTestSpec(bool isIncludeTestSpec)
{
    m_isIncludeTestSpec.setBool(isIncludeTestSpec);
}

bool CTestReportConfig::isUseCustomTime() const
{
    return m_isUseCustomTime.getBool();
}

void CTestReportConfig::setUseCustomTime(bool isUseCustomTime)
{
    m_isUseCustomTime.setBool(isUseCustomTime);
}

void CTestReportConfig::getUserInfo(StrStrMap& info) const
{
    m_userInfo.getMap(info);
}

void CTestReportConfig::setUserInfo(const std::string& info)
{
    CSectionSetters::setMapEntries(m_userInfo, info);
}

void CTestReportConfig::addUserInfo(const std::string& key, const std::string& value)
{
    auto scalar = std::make_shared<CYAMLScalar>();
    CYAMLUtil::parseScalar(*scalar, value);
    m_userInfo.add(CYAMLScalar(key), scalar);
}

} // namespace kestrix
