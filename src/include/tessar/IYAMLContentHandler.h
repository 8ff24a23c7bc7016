#pragma once

#include <yaml.h>

namespace kestrix {

/// Receives the events of a YAML stream from `CYAMLParser`.
class IYAMLContentHandler {
public:
    virtual void streamStart(yaml_encoding_t encoding) = 0;
    virtual void streamEnd() = 0;
    /// Version directive numbers (0, 0 without one) and the range of tag directives.
    virtual void documentStart(int versionMajor, int versionMinor, yaml_tag_directive_t* tagsStart,
                               yaml_tag_directive_t* tagsEnd) = 0;
    virtual void documentEnd() = 0;
    virtual void alias(const yaml_event_t& event) = 0;
    virtual void scalar(const yaml_event_t& event) = 0;
    virtual void seqStart(const yaml_event_t& event) = 0;
    virtual void sequenceEnd() = 0;
    virtual void mappingStart(const yaml_event_t& event) = 0;
    virtual void mappingEnd() = 0;

protected:
    // Handlers are destroyed through their concrete classes.
    ~IYAMLContentHandler() = default;
};

} // namespace kestrix
