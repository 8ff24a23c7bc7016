#include "CTestHIL.h"

#include "CSectionSetters.h"
#include "IEmitter.h"
#include "ParserException.h"

namespace kestrix {

const char* const CTestHIL::KEY_PARAMS = "params";

CTestHIL::CTestHIL(ITestParserEventReceiver* parent) : m_parent(parent) {}

CTestHIL::CTestHIL(const CTestHIL& other)
    : m_main(other.m_main),
      m_params(other.m_params),
      m_parent(other.m_parent),
      m_state(other.m_state),
      m_key(other.m_key)
{
}

CTestHIL& CTestHIL::operator=(const CTestHIL& other)
{
    if (this != &other) {
        m_main = other.m_main;
        m_params = other.m_params;
        m_state = other.m_state;
        m_key = other.m_key;
    }
    return *this;
}

CTestHIL::~CTestHIL() = default;

ITestParserEventReceiver* CTestHIL::mappingStart(const yaml_event_t& event)
{
    // The state never returns to the start: a second block in one test is refused.
    if (m_state != S_START) {
        throw ParserException(KX_POS, "Mapping not allowed at this point!");
    }
    m_main = CYAMLMap(event);
    m_state = S_BLOCK;
    return this;
}

ITestParserEventReceiver* CTestHIL::mappingKey(const yaml_event_t& event)
{
    m_key = CYAMLScalar(event);
    const std::string& key = m_key.getValue();
    if (m_state != S_BLOCK) {
        throw ParserException(KX_POS, "Invalid section for mapping key: ", key);
    }
    if (key != KEY_PARAMS) {
        throw ParserException(KX_POS, "Invalid item defined in section 'hil': ", key);
    }
    m_mapReceiver.reset(new CYAMLMapReceiver(this, &m_params));
    return m_mapReceiver.get();
}

ITestParserEventReceiver* CTestHIL::mappingValue(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Scalar value not allowed for 'hil' section: ", m_key.getValue());
}

ITestParserEventReceiver* CTestHIL::mappingEnd()
{
    return m_parent;
}

ITestParserEventReceiver* CTestHIL::sequenceStart(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Sequence not allowed in 'hil' section: '" + m_key.getValue() + "'");
}

ITestParserEventReceiver* CTestHIL::sequenceValue(const yaml_event_t& /*event*/)
{
    // Unreachable: a sequence is refused at its start.
    return this;
}

ITestParserEventReceiver* CTestHIL::sequenceEnd()
{
    return this;
}

void CTestHIL::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_main);
    if (!m_params.isEmpty()) {
        emitter->write(CYAMLScalar(std::string(KEY_PARAMS)));
        emitter->write(m_params);
    }
    emitter->writeMapEnd();
}

const StrVector& CTestHIL::getHILParamKeys() const
{
    return m_params.getKeyTexts();
}

void CTestHIL::getHILParamValues(StrVector& values) const
{
    m_params.getValues(values);
}

void CTestHIL::setParams(const std::string& params)
{
    CSectionSetters::setMapEntries(m_params, params);
}

bool CTestHIL::isEmpty() const
{
    return m_params.isEmpty();
}

} // namespace kestrix
