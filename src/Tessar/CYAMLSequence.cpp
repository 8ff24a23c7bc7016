#include "CYAMLSequence.h"

#include "IOException.h"
#include "IllegalArgumentException.h"

namespace kestrix {

CYAMLSequence::CYAMLSequence() : CYAMLObject(SEQUENCE) {}

CYAMLSequence::CYAMLSequence(int yamlStyle) : CYAMLObject(SEQUENCE), m_style(yamlStyle) {}

CYAMLSequence::CYAMLSequence(const yaml_event_t& event) : CYAMLObject(SEQUENCE)
{
    if (event.type != YAML_SEQUENCE_START_EVENT) {
        throw IllegalArgumentException(KX_POS, "Sequence start event expected, event type = " +
                                                   std::to_string(event.type));
    }
    const auto& start = event.data.sequence_start;
    m_anchor = fromYaml(start.anchor);
    m_tag = fromYaml(start.tag);
    m_implicit = start.implicit;
    m_style = start.style;
}

std::shared_ptr<CYAMLObject> CYAMLSequence::clone() const
{
    return std::make_shared<CYAMLSequence>(*this);
}

int CYAMLSequence::getType() const
{
    return SEQUENCE;
}

CYAMLSequence& CYAMLSequence::asSequence()
{
    return *this;
}

const CYAMLSequence& CYAMLSequence::asSequence() const
{
    return *this;
}

bool CYAMLSequence::isEmpty() const
{
    return m_items.empty();
}

void CYAMLSequence::initStartEvent(yaml_event_t* event) const
{
    // libyaml refuses an anchor or tag that is not UTF-8.
    if (!yaml_sequence_start_event_initialize(event, toYaml(m_anchor), toYaml(m_tag), m_implicit,
                                              static_cast<yaml_sequence_style_t>(m_style))) {
        throw IOException(KX_POS, "CYAMLSequence::initStartEvent failed!").add("anchor", m_anchor).add("tag", m_tag);
    }
}

int CYAMLSequence::getStyle() const
{
    return swapBlockAndFlow(m_style);
}

void CYAMLSequence::add(const CYAMLScalar& item)
{
    m_items.push_back(item);
}

void CYAMLSequence::clear()
{
    m_items.clear();
}

void CYAMLSequence::getVector(StrVector& out) const
{
    for (const auto& item : m_items) {
        out.push_back(toExpressionText(item));
    }
}

void CYAMLSequence::getQuotedVector(StrVector& out) const
{
    for (const auto& item : m_items) {
        out.push_back(toQuotedText(item));
    }
}

} // namespace kestrix
