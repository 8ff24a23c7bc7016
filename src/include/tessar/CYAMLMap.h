#pragma once

#include <map>
#include <vector>

#include "CYAMLScalar.h"
#include "Containers.h"

namespace kestrix {

/// Orders map keys by their expression text; also compares with a key text directly.
struct CYAMLKeyLess {
    typedef void is_transparent;
    bool operator()(const CYAMLScalar& a, const CYAMLScalar& b) const { return compareExpressionText(a, b) < 0; }
    bool operator()(const CYAMLScalar& a, const std::string& b) const { return compareExpressionText(a, b) < 0; }
    bool operator()(const std::string& a, const CYAMLScalar& b) const { return compareExpressionText(b, a) > 0; }
};

/// A mapping from scalar keys to values of any kind. Entries are ordered by the expression
/// text of the key; `getKeys` keeps the order of insertion, which is the order of output.
class CYAMLMap : public CYAMLObject {
public:
    typedef std::map<CYAMLScalar, std::shared_ptr<CYAMLObject>, CYAMLKeyLess> Entries;

    CYAMLMap();
    /// `yamlStyle` is libyaml's mapping style: 0 any, 1 block, 2 flow.
    explicit CYAMLMap(int yamlStyle);
    /// From a mapping start event: anchor, tag, implicit and style; no entries.
    explicit CYAMLMap(const yaml_event_t& event);
    /// Deep copies: each value is cloned.
    CYAMLMap(const CYAMLMap& other);
    CYAMLMap& operator=(const CYAMLMap& other);
    CYAMLMap(CYAMLMap&&) = default;
    CYAMLMap& operator=(CYAMLMap&&) = default;

    std::shared_ptr<CYAMLObject> clone() const override;
    int getType() const override;
    CYAMLMap& asMap() override;
    const CYAMLMap& asMap() const override;
    bool isEmpty() const override;
    void initStartEvent(yaml_event_t* event) const override;
    /// The caller's style of IEmitter: 1 flow, 2 block, 0 otherwise.
    virtual int getStyle() const;

    int getImplicit() const { return m_implicit; }
    int getYamlStyle() const { return m_style; }

    /// Adds an entry; IllegalArgumentException when the key is there already or the value is null.
    void add(const CYAMLScalar& key, std::shared_ptr<CYAMLObject> value);
    /// As `add`, but a key that is there already leaves the map unchanged and gives false.
    bool tryAdd(const CYAMLScalar& key, std::shared_ptr<CYAMLObject> value);
    /// Removes all entries; anchor, tag and style stay.
    void clear();

    bool contains(const CYAMLScalar& key) const;
    /// The entry of a key text (as `getKeys` gives it), or end of `getEntries()`.
    Entries::const_iterator find(const std::string& keyText) const;
    /// The value of a key text, or null.
    std::shared_ptr<CYAMLObject> getValue(const std::string& keyText) const;
    /// The entry of a key text that `getKeyTexts` gave.
    const Entries::value_type& entryOf(const std::string& keyText) const;
    /// Replaces entries and key order by deep copies of those of `source`; anchor, tag and
    /// style stay.
    void assignEntries(const CYAMLMap& source);

    const Entries& getEntries() const { return m_entries; }
    /// Key texts in order of insertion.
    const StrVector& getKeyTexts() const { return m_keys; }
    size_t size() const { return m_entries.size(); }

    /// Appends the key texts in order of insertion.
    void getKeys(StrVector& keys) const;
    /// Appends the expression text of each value, in order of insertion; each must be a scalar
    /// (otherwise IllegalStateException, and nothing is appended).
    void getValues(StrVector& values) const;
    /// Expression texts of keys and values; IllegalArgumentException for a value that is not a
    /// scalar, and then `map` is left as it was.
    void getMap(StrStrMap& map) const;

private:
    int m_implicit = 0;
    int m_style = 0;
    Entries m_entries;
    StrVector m_keys;
};

typedef std::shared_ptr<CYAMLMap> CYAMLMapSPtr;

} // namespace kestrix
