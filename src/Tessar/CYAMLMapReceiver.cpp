#include "CYAMLMapReceiver.h"

#include "NoSuchMethodException.h"
#include "ParserException.h"

namespace kestrix {

CYAMLMapReceiver::CYAMLMapReceiver(ITestParserEventReceiver* parent, CYAMLMap* map, CYAMLValidator* validator)
    : m_parent(parent), m_map(map), m_validator(validator)
{
}

ITestParserEventReceiver* CYAMLMapReceiver::mappingStart(const yaml_event_t& event)
{
    if (m_state != BEFORE) {
        throw ParserException(KX_POS, "Nested maps are not allowed!");
    }
    *m_map = CYAMLMap(event);
    m_state = INSIDE;
    return this;
}

ITestParserEventReceiver* CYAMLMapReceiver::mappingKey(const yaml_event_t& event)
{
    m_key = CYAMLScalar(event);
    if (m_state != INSIDE) {
        throw ParserException(KX_POS, "Key outside mapping section: ", m_key.getValue());
    }
    return this;
}

ITestParserEventReceiver* CYAMLMapReceiver::mappingValue(const yaml_event_t& event)
{
    if (m_state != INSIDE) {
        throw ParserException(KX_POS, "Scalar value outside mapping section: ", m_key.getValue());
    }
    // One look-up both finds a duplicate and places the new entry.
    if (!m_map->tryAdd(m_key, std::make_shared<CYAMLScalar>(event))) {
        throw ParserException(KX_POS, "Duplicate keys are not allowed in map: ", m_key.getValue());
    }
    if (m_validator != nullptr) {
        m_validator->validate(m_key, "");
    }
    return this;
}

ITestParserEventReceiver* CYAMLMapReceiver::mappingEnd()
{
    m_state = AFTER;
    if (m_validator != nullptr) {
        m_validator->validate(*m_map);
    }
    return m_parent;
}

void CYAMLMapReceiver::refuseSequence()
{
    throw ParserException(KX_POS, "No sequences allowed inside mapping!");
}

ITestParserEventReceiver* CYAMLMapReceiver::sequenceStart(const yaml_event_t& /*event*/)
{
    refuseSequence();
}

ITestParserEventReceiver* CYAMLMapReceiver::sequenceValue(const yaml_event_t& /*event*/)
{
    refuseSequence();
}

ITestParserEventReceiver* CYAMLMapReceiver::sequenceEnd()
{
    refuseSequence();
}

void CYAMLMapReceiver::serialize(std::shared_ptr<IEmitter> /*emitter*/)
{
    throw NoSuchMethodException(KX_POS, "Method has no useful implementation!");
}

} // namespace kestrix
