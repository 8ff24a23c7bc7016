#include "CProfilerArea.h"

#include "CSectionSetters.h"
#include "CUtil.h"
#include "CYAMLUtil.h"
#include "IEmitter.h"
#include "ParserException.h"

namespace kestrix {

const char* const CProfilerArea::KEY_NAME = "name";
const char* const CProfilerArea::KEY_VALUE = "value";
const char* const CProfilerArea::KEY_MIN_TIME = "minTime";
const char* const CProfilerArea::KEY_MAX_TIME = "maxTime";
const char* const CProfilerArea::KEY_TOTAL_TIME = "totalTime";
const char* const CProfilerArea::KEY_HITS = "hits";

namespace {

std::string scalarText(const yaml_event_t& event)
{
    return std::string(reinterpret_cast<const char*>(event.data.scalar.value), event.data.scalar.length);
}

} // namespace

CProfilerArea::CProfilerArea() = default;

CProfilerArea::CProfilerArea(ITestParserEventReceiver* parent) : m_parent(parent) {}

CProfilerArea::CProfilerArea(const CProfilerArea& other)
    : ITestParserEventReceiver(other),
      m_block(other.m_block),
      m_name(other.m_name),
      m_value(other.m_value),
      m_minTime(other.m_minTime),
      m_maxTime(other.m_maxTime),
      m_totalTime(other.m_totalTime),
      m_hits(other.m_hits),
      m_isValueSet(other.m_isValueSet),
      m_parent(other.m_parent),
      m_section(other.m_section),
      m_key(other.m_key)
{
}

CProfilerArea& CProfilerArea::operator=(const CProfilerArea& other)
{
    if (this != &other) {
        m_block = other.m_block;
        m_name = other.m_name;
        m_value = other.m_value;
        m_minTime = other.m_minTime;
        m_maxTime = other.m_maxTime;
        m_totalTime = other.m_totalTime;
        m_hits = other.m_hits;
        m_isValueSet = other.m_isValueSet;
        m_section = other.m_section;
        m_key = other.m_key;
        m_sequenceReceiver.reset();
    }
    return *this;
}

CProfilerArea::~CProfilerArea() = default;

CYAMLSequence* CProfilerArea::limitsOf(const std::string& key)
{
    if (key == KEY_MIN_TIME) {
        return &m_minTime;
    }
    if (key == KEY_MAX_TIME) {
        return &m_maxTime;
    }
    if (key == KEY_TOTAL_TIME) {
        return &m_totalTime;
    }
    if (key == KEY_HITS) {
        return &m_hits;
    }
    return nullptr;
}

ITestParserEventReceiver* CProfilerArea::mappingStart(const yaml_event_t& event)
{
    if (m_section != BEFORE_MAPPING) {
        throw ParserException(KX_POS, "No sub-mappings allowed in the profiler area section! Section: ", m_section);
    }
    m_block = CYAMLMap(event);
    m_section = IN_MAPPING;
    return this;
}

ITestParserEventReceiver* CProfilerArea::mappingKey(const yaml_event_t& event)
{
    const std::string key = scalarText(event);
    if (m_section != IN_MAPPING) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(key, m_section));
    }
    if (key == KEY_NAME || key == KEY_VALUE) {
        m_key = key;
        return this;
    }
    CYAMLSequence* limits = limitsOf(key);
    if (limits == nullptr) {
        throw ParserException(KX_POS, "Invalid tag in profiler area section: " + key);
    }
    m_key = key;
    m_sequenceReceiver.reset(new CYAMLSequenceReceiver(this, limits, &m_intervalValidator));
    return m_sequenceReceiver.get();
}

ITestParserEventReceiver* CProfilerArea::mappingValue(const yaml_event_t& event)
{
    if (m_section != IN_MAPPING) {
        throw ParserException(KX_POS, CSectionSetters::sectionTypeMessage(m_key, m_section));
    }
    if (m_key == KEY_NAME) {
        m_name = CYAMLScalar(event);
    } else if (m_key == KEY_VALUE) {
        m_value = CYAMLScalar(event);
        m_isValueSet = true;
    } else {
        throw ParserException(KX_POS, "Unknown tag in the profiler area section: " + m_key);
    }
    return this;
}

ITestParserEventReceiver* CProfilerArea::mappingEnd()
{
    m_sequenceReceiver.reset();
    if (m_name.getValue().empty()) {
        throw ParserException(KX_POS, "At least 'name' tag should be specified for profiler area! "
                                      "One profiler area must be specified in one list element as mapping!");
    }
    return m_parent;
}

ITestParserEventReceiver* CProfilerArea::sequenceStart(const yaml_event_t&)
{
    throw ParserException(KX_POS, "Invalid sequence in profiler area section!");
}

ITestParserEventReceiver* CProfilerArea::sequenceValue(const yaml_event_t& event)
{
    throw ParserException(KX_POS, "Invalid sequence scalar profiler area section: " + scalarText(event));
}

ITestParserEventReceiver* CProfilerArea::sequenceEnd()
{
    throw ParserException(KX_POS, "Invalid sequence in profiler area section!");
}

void CProfilerArea::serialize(std::shared_ptr<IEmitter> emitter)
{
    IEmitter::checkNotNull(emitter);
    emitter->writeMapStart(m_block);
    emitter->writeMappingPair(KEY_NAME, m_name);
    // The text goes out as read, whether or not the value is enabled.
    emitter->writeMappingPair(KEY_VALUE, m_value);
    emitter->writeMappingPair(KEY_MIN_TIME, m_minTime);
    emitter->writeMappingPair(KEY_MAX_TIME, m_maxTime);
    emitter->writeMappingPair(KEY_TOTAL_TIME, m_totalTime);
    emitter->writeMappingPair(KEY_HITS, m_hits);
    emitter->writeMapEnd();
}

std::string CProfilerArea::getAreaName() const
{
    return m_name.getValue();
}

void CProfilerArea::setAreaName(const std::string& name)
{
    CYAMLUtil::parseScalar(m_name, name);
}

long long CProfilerArea::getAreaValue() const
{
    return CUtil::aOrHex2l(m_value.getValue());
}

void CProfilerArea::setAreaValue(long long value)
{
    m_value.setValue(CUtil::i2a(value));
    m_isValueSet = true;
}

bool CProfilerArea::isAreaValueSet() const
{
    return m_isValueSet;
}

void CProfilerArea::disableAreaValue()
{
    m_isValueSet = false;
}

MinMaxLimits CProfilerArea::toLimits(const CYAMLSequence& sequence)
{
    const auto& items = sequence.getItems();
    // A list is validated to hold none or two items when read; any other count is undefined.
    if (items.size() != 2) {
        return MinMaxLimits();
    }
    return MinMaxLimits(CUtil::a2l(CUtil::trim(items[0].getValue())), CUtil::a2l(CUtil::trim(items[1].getValue())),
                        true);
}

void CProfilerArea::fromLimits(CYAMLSequence& sequence, const MinMaxLimits& limits)
{
    sequence.clear();
    if (limits.m_isDefined) {
        sequence.add(CYAMLScalar(CUtil::i2a(limits.m_min)));
        sequence.add(CYAMLScalar(CUtil::i2a(limits.m_max)));
    }
}

MinMaxLimits CProfilerArea::getMinTime() const
{
    return toLimits(m_minTime);
}

void CProfilerArea::setMinTime(const MinMaxLimits& limits)
{
    fromLimits(m_minTime, limits);
}

MinMaxLimits CProfilerArea::getMaxTime() const
{
    return toLimits(m_maxTime);
}

void CProfilerArea::setMaxTime(const MinMaxLimits& limits)
{
    fromLimits(m_maxTime, limits);
}

MinMaxLimits CProfilerArea::getTotalTime() const
{
    return toLimits(m_totalTime);
}

void CProfilerArea::setTotalTime(const MinMaxLimits& limits)
{
    fromLimits(m_totalTime, limits);
}

MinMaxLimits CProfilerArea::getHits() const
{
    return toLimits(m_hits);
}

void CProfilerArea::setHits(const MinMaxLimits& limits)
{
    fromLimits(m_hits, limits);
}

} // namespace kestrix
