#include "CYAMLTestContentHandler.h"

#include <cstring>

#include "ParserException.h"

namespace kestrix {

namespace {

std::string textOf(const yaml_char_t* text)
{
    return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

} // namespace

CYAMLTestContentHandler::CYAMLTestContentHandler(ITestParserEventReceiver* receiver)
    : m_receiver(receiver)
{
}

// Stream and document boundaries are not seen by the receivers. A second document goes to the
// receiver that the first one left; if the root block's end left none, `current()` refuses it.
void CYAMLTestContentHandler::streamStart(yaml_encoding_t /*encoding*/) {}

void CYAMLTestContentHandler::streamEnd() {}

void CYAMLTestContentHandler::documentStart(int /*versionMajor*/, int /*versionMinor*/,
                                            yaml_tag_directive_t* /*tagsStart*/,
                                            yaml_tag_directive_t* /*tagsEnd*/)
{
}

void CYAMLTestContentHandler::documentEnd() {}

ITestParserEventReceiver& CYAMLTestContentHandler::current() const
{
    if (m_receiver == nullptr) {
        // The root block has ended and handed control back to nobody: the input holds one
        // document, and anything behind it (most often a further document) is refused here.
        throw ParserException(KX_POS, "Unexpected YAML content after the end of the root block. "
                                      "Only one YAML document is allowed!");
    }
    return *m_receiver;
}

void CYAMLTestContentHandler::nextPosition()
{
    if (m_state == MAP_KEY) {
        m_state = MAP_VALUE;
    } else if (m_state == MAP_VALUE) {
        m_state = MAP_KEY;
    }
}

void CYAMLTestContentHandler::recordCollectionAnchor(const yaml_event_t& event)
{
    const yaml_char_t* anchor = event.type == YAML_MAPPING_START_EVENT
                                    ? event.data.mapping_start.anchor
                                    : event.data.sequence_start.anchor;
    if (anchor != nullptr) {
        std::string name = textOf(anchor);
        m_anchors.erase(name);
        m_collectionAnchors.insert(name);
    }
}

void CYAMLTestContentHandler::collectionStart(const yaml_event_t& event, EState inner)
{
    ITestParserEventReceiver& receiver = current();
    recordCollectionAnchor(event);
    // A collection takes the place of a key or a value: the position after it is the next one.
    nextPosition();
    m_stateStack.push(m_state);
    m_state = inner;
    m_receiver = inner == MAP_KEY ? receiver.mappingStart(event) : receiver.sequenceStart(event);
}

void CYAMLTestContentHandler::mappingStart(const yaml_event_t& event)
{
    collectionStart(event, MAP_KEY);
}

void CYAMLTestContentHandler::seqStart(const yaml_event_t& event)
{
    collectionStart(event, IN_SEQUENCE);
}

void CYAMLTestContentHandler::collectionEnd()
{
    if (m_stateStack.empty()) {
        throw ParserException(KX_POS, "End of a mapping or sequence that was not started!");
    }
    m_state = m_stateStack.top();
    m_stateStack.pop();
}

void CYAMLTestContentHandler::mappingEnd()
{
    ITestParserEventReceiver& receiver = current();
    collectionEnd();
    m_receiver = receiver.mappingEnd();
}

void CYAMLTestContentHandler::sequenceEnd()
{
    ITestParserEventReceiver& receiver = current();
    collectionEnd();
    m_receiver = receiver.sequenceEnd();
}

void CYAMLTestContentHandler::scalar(const yaml_event_t& event)
{
    const auto& data = event.data.scalar;
    if (data.anchor != nullptr) {
        std::string name = textOf(data.anchor);
        m_collectionAnchors.erase(name);
        m_anchors[name] = std::string(reinterpret_cast<const char*>(data.value), data.length);
    }
    switch (m_state) {
    case IN_SEQUENCE:
        m_receiver = current().sequenceValue(event);
        break;
    case MAP_KEY:
        m_receiver = current().mappingKey(event);
        break;
    case MAP_VALUE:
        m_receiver = current().mappingValue(event);
        break;
    default:
        current(); // behind a root block that left no receiver, the further document is at fault
        throw ParserException(KX_POS, "Standalone scalar not allowed. It should be member of mapping or sequence: ",
                              std::string(reinterpret_cast<const char*>(data.value), data.length));
    }
    nextPosition();
}

void CYAMLTestContentHandler::alias(const yaml_event_t& event)
{
    std::string name = textOf(event.data.alias.anchor);
    auto found = m_anchors.find(name);
    if (found == m_anchors.end()) {
        ParserException error(KX_POS, "Undefined anchor: ", name);
        if (m_collectionAnchors.count(name) != 0) {
            error.add("reason", "aliases of mappings and sequences are not supported");
        }
        throw error;
    }
    // An alias stands for the anchored scalar's text, handed on as a plain scalar at the
    // alias's own place; anchor, tag and quoting of the original are not repeated.
    std::string value = found->second;
    yaml_event_t scalarEvent;
    std::memset(&scalarEvent, 0, sizeof(scalarEvent));
    scalarEvent.type = YAML_SCALAR_EVENT;
    scalarEvent.start_mark = event.start_mark;
    scalarEvent.end_mark = event.end_mark;
    scalarEvent.data.scalar.value = reinterpret_cast<yaml_char_t*>(&value[0]);
    scalarEvent.data.scalar.length = value.size();
    scalarEvent.data.scalar.plain_implicit = 1;
    scalarEvent.data.scalar.quoted_implicit = 0;
    scalarEvent.data.scalar.style = YAML_PLAIN_SCALAR_STYLE;
    scalar(scalarEvent);
}

} // namespace kestrix
