#include "CYAMLMap.h"

#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"

namespace kestrix {

CYAMLMap::CYAMLMap() : CYAMLObject(MAPPING) {}

CYAMLMap::CYAMLMap(int yamlStyle) : CYAMLObject(MAPPING), m_style(yamlStyle) {}

CYAMLMap::CYAMLMap(const yaml_event_t& event) : CYAMLObject(MAPPING)
{
    if (event.type != YAML_MAPPING_START_EVENT) {
        throw IllegalArgumentException(KX_POS, "Mapping start event expected, event type = " +
                                                   std::to_string(event.type));
    }
    const auto& start = event.data.mapping_start;
    m_anchor = fromYaml(start.anchor);
    m_tag = fromYaml(start.tag);
    m_implicit = start.implicit;
    m_style = start.style;
}

CYAMLMap::CYAMLMap(const CYAMLMap& other)
    : CYAMLObject(other), m_implicit(other.m_implicit), m_style(other.m_style), m_keys(other.m_keys)
{
    for (const auto& entry : other.m_entries) {
        m_entries.emplace_hint(m_entries.end(), entry.first, entry.second->clone());
    }
}

CYAMLMap& CYAMLMap::operator=(const CYAMLMap& other)
{
    if (this != &other) {
        CYAMLMap copy(other);
        *this = std::move(copy);
    }
    return *this;
}

std::shared_ptr<CYAMLObject> CYAMLMap::clone() const
{
    return std::make_shared<CYAMLMap>(*this);
}

int CYAMLMap::getType() const
{
    return MAPPING;
}

CYAMLMap& CYAMLMap::asMap()
{
    return *this;
}

const CYAMLMap& CYAMLMap::asMap() const
{
    return *this;
}

bool CYAMLMap::isEmpty() const
{
    return m_entries.empty();
}

void CYAMLMap::initStartEvent(yaml_event_t* event) const
{
    // libyaml refuses an anchor or tag that is not UTF-8.
    if (!yaml_mapping_start_event_initialize(event, toYaml(m_anchor), toYaml(m_tag), m_implicit,
                                             static_cast<yaml_mapping_style_t>(m_style))) {
        throw IOException(KX_POS, "CYAMLMap::initStartEvent failed!").add("anchor", m_anchor).add("tag", m_tag);
    }
}

int CYAMLMap::getStyle() const
{
    return swapBlockAndFlow(m_style);
}

void CYAMLMap::add(const CYAMLScalar& key, std::shared_ptr<CYAMLObject> value)
{
    if (!tryAdd(key, std::move(value))) {
        throw IllegalArgumentException(KX_POS, "Map item with this key is already defined. Duplicates are not allowed!")
            .add("key", toExpressionText(key));
    }
}

bool CYAMLMap::tryAdd(const CYAMLScalar& key, std::shared_ptr<CYAMLObject> value)
{
    // Every entry has a value, so that writers and readers need not check.
    if (!value) {
        throw IllegalArgumentException(KX_POS, "Map item without value!").add("key", toExpressionText(key));
    }
    const auto found = m_entries.lower_bound(key);
    if (found != m_entries.end() && compareExpressionText(found->first, key) == 0) {
        return false;
    }
    std::string keyText = toExpressionText(key);
    m_entries.emplace_hint(found, key, std::move(value));
    m_keys.push_back(std::move(keyText));
    return true;
}

void CYAMLMap::clear()
{
    m_entries.clear();
    m_keys.clear();
}

bool CYAMLMap::contains(const CYAMLScalar& key) const
{
    return m_entries.find(key) != m_entries.end();
}

CYAMLMap::Entries::const_iterator CYAMLMap::find(const std::string& keyText) const
{
    return m_entries.find(keyText);
}

std::shared_ptr<CYAMLObject> CYAMLMap::getValue(const std::string& keyText) const
{
    const auto found = m_entries.find(keyText);
    return found == m_entries.end() ? nullptr : found->second;
}

const CYAMLMap::Entries::value_type& CYAMLMap::entryOf(const std::string& keyText) const
{
    const auto found = m_entries.find(keyText);
    if (found == m_entries.end()) {
        throw IllegalStateException(KX_POS, "Internal error - key without entry in map!").add("key", keyText);
    }
    return *found;
}

void CYAMLMap::assignEntries(const CYAMLMap& source)
{
    CYAMLMap copy(source);
    m_entries = std::move(copy.m_entries);
    m_keys = std::move(copy.m_keys);
}

void CYAMLMap::getKeys(StrVector& keys) const
{
    keys.insert(keys.end(), m_keys.begin(), m_keys.end());
}

void CYAMLMap::getValues(StrVector& values) const
{
    StrVector texts;
    texts.reserve(m_keys.size());
    for (const auto& key : m_keys) {
        texts.push_back(toExpressionText(entryOf(key).second->asScalar()));
    }
    values.insert(values.end(), texts.begin(), texts.end());
}

void CYAMLMap::getMap(StrStrMap& map) const
{
    StrStrMap pairs;
    for (const auto& entry : m_entries) {
        std::string key = toExpressionText(entry.first);
        if (entry.second->getType() != SCALAR) {
            throw IllegalArgumentException(KX_POS, "Not all values are scalars! Key of nonscalar value: " + key);
        }
        pairs.emplace_hint(pairs.end(), std::move(key), toExpressionText(entry.second->asScalar()));
    }
    for (auto& pair : pairs) {
        map[pair.first] = std::move(pair.second);
    }
}

} // namespace kestrix
