#include "CYAMLSequenceReceiver.h"

#include "NoSuchMethodException.h"
#include "ParserException.h"

namespace kestrix {

CYAMLSequenceReceiver::CYAMLSequenceReceiver(ITestParserEventReceiver* parent, CYAMLSequence* sequence,
                                             CYAMLValidator* validator)
    : m_parent(parent), m_sequence(sequence), m_validator(validator)
{
}

ITestParserEventReceiver* CYAMLSequenceReceiver::sequenceStart(const yaml_event_t& event)
{
    if (m_state != BEFORE) {
        throw ParserException(KX_POS, "Nested sequences are not allowed!");
    }
    *m_sequence = CYAMLSequence(event);
    m_state = INSIDE;
    return this;
}

ITestParserEventReceiver* CYAMLSequenceReceiver::sequenceValue(const yaml_event_t& event)
{
    CYAMLScalar item(event);
    if (m_state != INSIDE) {
        throw ParserException(KX_POS, "Value outside sequence section: ", item.getValue());
    }
    if (m_validator != nullptr) {
        m_validator->validate(item, "");
    }
    m_sequence->add(item);
    return this;
}

ITestParserEventReceiver* CYAMLSequenceReceiver::sequenceEnd()
{
    m_state = AFTER;
    if (m_validator != nullptr) {
        m_validator->validate(*m_sequence);
    }
    return m_parent;
}

ITestParserEventReceiver* CYAMLSequenceReceiver::mappingStart(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Sequence of scalars expected, found mapping start!");
}

ITestParserEventReceiver* CYAMLSequenceReceiver::mappingKey(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Sequence of scalars expected, found scalar mapping key!");
}

ITestParserEventReceiver* CYAMLSequenceReceiver::mappingValue(const yaml_event_t& /*event*/)
{
    throw ParserException(KX_POS, "Sequence of scalars expected, found scalar mapping value!");
}

ITestParserEventReceiver* CYAMLSequenceReceiver::mappingEnd()
{
    throw ParserException(KX_POS, "Sequence of scalars expected, found mapping end!");
}

void CYAMLSequenceReceiver::serialize(std::shared_ptr<IEmitter> /*emitter*/)
{
    throw NoSuchMethodException(KX_POS, "Method has no useful implementation!");
}

} // namespace kestrix
