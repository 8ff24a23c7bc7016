#include "CTestFunction.h"

#include "CSectionSetters.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "ParserException.h"

namespace kestrix {

CTestFunction::CTestFunction(ITestParserEventReceiver* parent)
    : m_block(YAML_FLOW_SEQUENCE_STYLE), m_parent(parent)
{
}

CTestFunction::CTestFunction() : CTestFunction(nullptr) {}

CTestFunction& CTestFunction::operator=(const CTestFunction& other)
{
    if (this != &other) {
        m_block = other.m_block;
        m_name = other.m_name;
        m_params = other.m_params;
        m_retValName = other.m_retValName;
        m_state = other.m_state;
        m_key = other.m_key;
    }
    return *this;
}

ITestParserEventReceiver* CTestFunction::mappingStart(const yaml_event_t& /*event*/)
{
    if (m_state == S_START) {
        throw ParserException(KX_POS, "Function name must be the first item!");
    }
    if (m_state != S_NAME_READ) {
        throw ParserException(KX_POS, "Parameters expected!");
    }
    // Only an empty mapping passes: it stands in for an empty parameter list.
    m_state = S_PARAMS_MAP;
    return this;
}

ITestParserEventReceiver* CTestFunction::mappingKey(const yaml_event_t& event)
{
    CYAMLScalar key(event);
    if (m_state != S_PARAMS_MAP) {
        throw ParserException(KX_POS, "Invalid section for map in function tag. Key: ", key.getValue());
    }
    m_key = key;
    return this;
}

ITestParserEventReceiver* CTestFunction::mappingValue(const yaml_event_t& event)
{
    CYAMLScalar value(event);
    if (m_state == S_START) {
        throw ParserException(KX_POS,
                              "Function call specification should be described as a list: "
                              "'[funcName, ...]'! Given as scalar: '" + value.getValue() + "'");
    }
    throw ParserException(KX_POS, "Invalid section for map in function tag. Value: ", value.getValue());
}

ITestParserEventReceiver* CTestFunction::mappingEnd()
{
    if (m_state != S_PARAMS_MAP) {
        throw ParserException(KX_POS, "Invalid section at mapping end: ", m_state);
    }
    m_state = S_PARAMS_READ;
    return this;
}

ITestParserEventReceiver* CTestFunction::sequenceStart(const yaml_event_t& event)
{
    switch (m_state) {
    case S_START:
        m_block = CYAMLSequence(event);
        m_state = S_NAME;
        return this;
    case S_NAME_READ:
        m_params = CYAMLSequence(event);
        m_state = S_PARAMS;
        return this;
    default:
        throw ParserException(KX_POS, "Invalid specification for function call! Unexpected sequence start!");
    }
}

ITestParserEventReceiver* CTestFunction::sequenceValue(const yaml_event_t& event)
{
    CYAMLScalar value(event);
    switch (m_state) {
    case S_NAME:
        m_name = value;
        m_state = S_NAME_READ;
        return this;
    case S_NAME_READ:
        throw ParserException(KX_POS,
                              "List of parameters missing after function name. If there are no "
                              "parameters, specify empty list as [], for example: "
                              "func: [f, [], reValName]");
    case S_PARAMS:
        m_params.add(value);
        return this;
    case S_PARAMS_READ:
        m_retValName = value;
        m_state = S_FINISHED;
        return this;
    default:
        throw ParserException(KX_POS, "Internal error in section 'function'. Invalid state: " +
                                          std::to_string(m_state) + "   Scalar value: " + value.getValue());
    }
}

ITestParserEventReceiver* CTestFunction::sequenceEnd()
{
    switch (m_state) {
    case S_NAME_READ:
    case S_PARAMS_READ:
    case S_FINISHED:
        m_state = S_FINISHED;
        return m_parent;
    case S_PARAMS:
    case S_PARAMS_MAP:
        m_state = S_PARAMS_READ;
        return this;
    default:
        throw ParserException(KX_POS, "Invalid section at sequence end: ", m_state);
    }
}

void CTestFunction::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    if (isEmpty()) {
        return;
    }
    emitter->writeSequenceStart(m_block);
    emitter->write(m_name);
    if (!m_params.isEmpty() || !m_retValName.isEmpty()) {
        emitter->write(m_params);
    }
    if (!m_retValName.isEmpty()) {
        emitter->write(m_retValName);
    }
    emitter->writeSequenceEnd();
}

bool CTestFunction::isEmpty() const
{
    return m_name.isEmpty();
}

std::string CTestFunction::getName() const
{
    return m_name.getValue();
}

std::string CTestFunction::getRetValueName() const
{
    return m_retValName.getValue();
}

bool CTestFunction::hasPositionParams() const
{
    return !m_params.isEmpty();
}

void CTestFunction::getPositionParams(StrVector& params) const
{
    m_params.getVector(params);
}

void CTestFunction::setName(const std::string& name)
{
    CYAMLUtil::parseScalar(m_name, name);
}

void CTestFunction::setRetValueName(const std::string& retValueName)
{
    CYAMLUtil::parseScalar(m_retValName, retValueName);
}

void CTestFunction::setPositionParameters(const std::string& params)
{
    CSectionSetters::setSequenceItems(m_params, params);
}

} // namespace kestrix
