#pragma once

#include <memory>
#include <string>

#include <yaml.h>

namespace kestrix {

class CYAMLScalar;
class CYAMLSequence;
class CYAMLMap;

/// A value of a YAML document that remembers how it was written (anchor, tag, and in the
/// concrete classes implicit flags and style), so that what is read is written back alike.
class CYAMLObject {
public:
    /// Values of `getType()`.
    enum { SCALAR = 0, SEQUENCE = 1, MAPPING = 2 };

    virtual ~CYAMLObject() = default;

    virtual std::shared_ptr<CYAMLObject> clone() const = 0;
    virtual int getType() const = 0;

    // Typed access; the base refuses with IllegalStateException, each kind answers its own.
    virtual CYAMLScalar& asScalar();
    virtual const CYAMLScalar& asScalar() const;
    virtual CYAMLSequence& asSequence();
    virtual const CYAMLSequence& asSequence() const;
    virtual CYAMLMap& asMap();
    virtual const CYAMLMap& asMap() const;

    virtual const std::string& getAnchor() const;
    virtual const std::string& getTag() const;
    virtual bool isEmpty() const = 0;

    /// Fills `event` with the start event of this value (the scalar event for scalars).
    /// The caller owns the event afterwards and hands it to the emitter.
    virtual void initStartEvent(yaml_event_t* event) const = 0;

    /// libyaml's collection style and the caller's style of IEmitter run the other way round
    /// (libyaml: 1 block, 2 flow; caller: 1 flow, 2 block); anything else is 0 either way.
    static int swapBlockAndFlow(int style) { return style == 1 ? 2 : (style == 2 ? 1 : 0); }

    void setAnchor(const std::string& anchor) { m_anchor = anchor; }
    void setTag(const std::string& tag) { m_tag = tag; }

protected:
    explicit CYAMLObject(int type) : m_type(type) {}
    CYAMLObject(int type, const std::string& anchor, const std::string& tag)
        : m_type(type), m_anchor(anchor), m_tag(tag) {}
    CYAMLObject(const CYAMLObject&) = default;
    CYAMLObject(CYAMLObject&&) = default;
    CYAMLObject& operator=(const CYAMLObject&) = default;
    CYAMLObject& operator=(CYAMLObject&&) = default;

    /// Text of a libyaml string field; a null pointer gives an empty string.
    static std::string fromYaml(const yaml_char_t* text);
    /// A libyaml string argument: null for an empty string.
    static yaml_char_t* toYaml(const std::string& text);

    int m_type;
    std::string m_anchor;
    std::string m_tag;
};

typedef std::shared_ptr<CYAMLObject> CYAMLObjectSPtr;

} // namespace kestrix
