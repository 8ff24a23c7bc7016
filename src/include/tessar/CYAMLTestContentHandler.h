#pragma once

#include <map>
#include <set>
#include <stack>
#include <string>

#include "ITestParserEventReceiver.h"
#include "IYAMLContentHandler.h"

namespace kestrix {

/// Tracks the position in nested blocks (sequence item, mapping key or mapping value) and hands
/// each event to the current receiver, keeping the receiver that it returns for the next one.
class CYAMLTestContentHandler : public IYAMLContentHandler {
public:
    /// `receiver` takes the root block; it is not owned.
    explicit CYAMLTestContentHandler(ITestParserEventReceiver* receiver);

    void streamStart(yaml_encoding_t encoding) override;
    void streamEnd() override;
    void documentStart(int versionMajor, int versionMinor, yaml_tag_directive_t* tagsStart,
                       yaml_tag_directive_t* tagsEnd) override;
    void documentEnd() override;
    void alias(const yaml_event_t& event) override;
    void scalar(const yaml_event_t& event) override;
    void seqStart(const yaml_event_t& event) override;
    void sequenceEnd() override;
    void mappingStart(const yaml_event_t& event) override;
    void mappingEnd() override;

private:
    enum EState { OUTSIDE = 0, IN_SEQUENCE = 1, MAP_KEY = 2, MAP_VALUE = 3 };

    /// Key and value positions alternate.
    void nextPosition();
    void collectionStart(const yaml_event_t& event, EState inner);
    void recordCollectionAnchor(const yaml_event_t& event);
    /// Back to the position of the enclosing collection.
    void collectionEnd();
    /// The current receiver; ParserException when an earlier block end left none.
    ITestParserEventReceiver& current() const;

    std::map<std::string, std::string> m_anchors;
    /// Anchors defined on mappings and sequences, whose aliases are refused.
    std::set<std::string> m_collectionAnchors;
    int m_state = OUTSIDE;
    std::stack<int> m_stateStack;
    ITestParserEventReceiver* m_receiver;
};

} // namespace kestrix
