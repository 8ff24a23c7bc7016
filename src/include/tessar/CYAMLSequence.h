#pragma once

#include <vector>

#include "CYAMLScalar.h"
#include "Containers.h"

namespace kestrix {

/// A sequence of scalars, held by value, with libyaml's implicit flag and sequence style.
class CYAMLSequence : public CYAMLObject {
public:
    CYAMLSequence();
    /// `yamlStyle` is libyaml's sequence style: 0 any, 1 block, 2 flow.
    explicit CYAMLSequence(int yamlStyle);
    /// From a sequence start event: anchor, tag, implicit and style.
    explicit CYAMLSequence(const yaml_event_t& event);

    std::shared_ptr<CYAMLObject> clone() const override;
    int getType() const override;
    CYAMLSequence& asSequence() override;
    const CYAMLSequence& asSequence() const override;
    bool isEmpty() const override;
    void initStartEvent(yaml_event_t* event) const override;
    /// The caller's style of IEmitter: 1 flow, 2 block, 0 otherwise.
    virtual int getStyle() const;

    int getImplicit() const { return m_implicit; }
    int getYamlStyle() const { return m_style; }

    void add(const CYAMLScalar& item);
    void clear();
    const std::vector<CYAMLScalar>& getItems() const { return m_items; }
    std::vector<CYAMLScalar>& getItems() { return m_items; }
    size_t size() const { return m_items.size(); }

    /// Appends `toExpressionText` of each item.
    void getVector(StrVector& out) const;
    /// Appends `toQuotedText` of each item.
    void getQuotedVector(StrVector& out) const;

private:
    int m_implicit = 0;
    int m_style = 0;
    std::vector<CYAMLScalar> m_items;
};

} // namespace kestrix
