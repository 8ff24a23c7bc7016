#include "CTestBench.h"

#include "CYAMLDocumentWriter.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "IllegalArgumentException.h"
#include "ParserException.h"

namespace kestrix {

namespace {

ParserException sectionAlreadyDefined(const char* section)
{
    return ParserException(KX_POS, "Section is already defined!").add("section", section);
}

} // namespace

CTestBench::CTestBench()
    : m_specification(std::make_shared<CTestSpecification>()),
      m_environment(std::make_shared<CTestEnvironmentConfig>(this)),
      m_report(std::make_shared<CTestReportConfig>(this))
{
}

std::shared_ptr<CTestBench> CTestBench::load(const std::string& fileName, int seekPos)
{
    auto bench = std::make_shared<CTestBench>();
    CYAMLUtil::parseYAML(*bench, fileName, seekPos);
    return bench;
}

std::shared_ptr<CTestBench> CTestBench::load(const std::string& fileName)
{
    return load(fileName, 0);
}

std::shared_ptr<CTestBench> CTestBench::parse(const std::string& text)
{
    auto bench = std::make_shared<CTestBench>();
    CYAMLUtil::parseYAML(*bench, text);
    return bench;
}

void CTestBench::save(const std::string& fileName, bool isAppend)
{
    CYAMLDocumentWriter::save(*this, fileName, isAppend);
}

void CTestBench::save(const std::string& fileName)
{
    save(fileName, false);
}

ITestParserEventReceiver* CTestBench::mappingStart(const yaml_event_t& event)
{
    if (m_state != S_BEFORE) {
        throw ParserException(KX_POS, "Invalid section for mapping start!").add("section", m_state).add("key", m_key);
    }
    m_main = CYAMLMap(event);
    m_state = S_INSIDE;
    return this;
}

ITestParserEventReceiver* CTestBench::mappingKey(const yaml_event_t& event)
{
    m_key = CYAMLScalar(event).getValue();
    if (m_state != S_INSIDE) {
        throw ParserException(KX_POS, "Main tags in test bench may only be specified in main section!")
            .add("section", m_state);
    }
    if (m_key == KEY_ENV) {
        if (!m_environment->isEmpty()) {
            throw sectionAlreadyDefined(KEY_ENV);
        }
        return m_environment.get();
    }
    if (m_key == KEY_REPORT_CONFIG) {
        if (!m_report->isEmpty()) {
            throw sectionAlreadyDefined(KEY_REPORT_CONFIG);
        }
        return m_report.get();
    }
    if (m_key == KEY_TESTS) {
        if (!m_specification->isEmpty()) {
            throw sectionAlreadyDefined(KEY_TESTS);
        }
        // From here on the root specification receives: its sequence end does not come back.
        m_specification->mappingKey(event);
        return m_specification.get();
    }
    throw ParserException(KX_POS, "Invalid tag in test bench!").add("tag", m_key);
}

ITestParserEventReceiver* CTestBench::mappingValue(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Mapping values not allowed in the main section of test bench!");
}

ITestParserEventReceiver* CTestBench::mappingEnd()
{
    if (m_state != S_INSIDE) {
        throw ParserException(KX_POS, "Mapping end not allowed outside test bench!");
    }
    m_state = S_AFTER;
    return this;
}

ITestParserEventReceiver* CTestBench::sequenceStart(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Sequence start not allowed in the main section of test bench!");
}

ITestParserEventReceiver* CTestBench::sequenceValue(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Sequence scalar not allowed in the main section of test bench!");
}

ITestParserEventReceiver* CTestBench::sequenceEnd()
{
    throw ParserException(KX_POS, "Sequence end not allowed in the main section of test bench!");
}

void CTestBench::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_main);
    if (!m_environment->isEmpty()) {
        emitter->write(std::string(KEY_ENV));
        m_environment->serialize(emitter);
    }
    if (!m_report->isEmpty()) {
        m_report->serialize(emitter);
    }
    if (!m_specification->isEmpty()) {
        m_specification->serialize(emitter, false);
    }
    emitter->writeMapEnd();
}

} // namespace kestrix
