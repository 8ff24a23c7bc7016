#include "CXMLEmitter.h"

#include <cstring>

#include "IllegalArgumentException.h"
#include "IllegalStateException.h"

namespace kestrix {

namespace {

const char* const XML_HEADER = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";
const char* const ENTITIES[] = {"&amp;", "&lt;", "&gt;", "&apos;", "&quot;"};

bool startsEntity(const std::string& text, size_t pos)
{
    for (const char* entity : ENTITIES) {
        if (text.compare(pos, std::strlen(entity), entity) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

CXMLEmitter::CXMLEmitter(std::shared_ptr<IStream> stream) : m_stream(nullptr), m_streamOwner(std::move(stream))
{
    if (!m_streamOwner) {
        throw IllegalArgumentException(KX_POS, "Output stream of the emitter is null!");
    }
    m_stream = &m_streamOwner->getStream();
}

void CXMLEmitter::indent()
{
    for (int i = 0; i < m_indentLevel; ++i) {
        *m_stream << m_indentUnit;
    }
}

void CXMLEmitter::startStream(const std::string& header)
{
    *m_stream << XML_HEADER << header << "<main>\n";
    ++m_indentLevel;
}

void CXMLEmitter::startStream()
{
    startStream(std::string());
}

void CXMLEmitter::endStream()
{
    --m_indentLevel;
    *m_stream << "</main>\n";
}

void CXMLEmitter::startDocument(bool)
{
    indent();
    *m_stream << "<doc>\n";
    ++m_indentLevel;
}

void CXMLEmitter::endDocument(bool)
{
    --m_indentLevel;
    indent();
    *m_stream << "</doc>\n";
}

std::string CXMLEmitter::escapeSpecialChars(const std::string& text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        switch (text[i]) {
        case '&':
            // Text that is escaped already stays as it is.
            escaped += startsEntity(text, i) ? "&" : "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '\'':
            escaped += "&apos;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += text[i];
        }
    }
    return escaped;
}

void CXMLEmitter::write(const std::string& value)
{
    const std::string text = escapeSpecialChars(value);
    if (m_tagStack.empty()) {
        *m_stream << text;
        return;
    }
    const StackItem top = m_tagStack.back();
    switch (top.mode) {
    case SEQUENCE:
        indent();
        *m_stream << "<item>" << text << "</item>\n";
        break;
    case MAPPING_KEY:
        indent();
        *m_stream << "<" << text << ">";
        m_tagStack.push_back({text, MAPPING_VALUE});
        break;
    case MAPPING_VALUE:
        *m_stream << text << "</" << top.tag << ">\n";
        m_tagStack.pop_back();
        break;
    default:
        throw IllegalStateException(KX_POS, "Invalid position for XML scalar!")
            .add("scalar", text)
            .add("xmlStackTag", top.tag)
            .add("xmlStackMode", top.mode);
    }
}

void CXMLEmitter::write(const CYAMLScalar& scalar)
{
    write(scalar.getValue());
}

void CXMLEmitter::write(const CYAMLSequence& sequence)
{
    sequenceStart(STYLE_ANY);
    for (const auto& item : sequence.getItems()) {
        write(item);
    }
    sequenceEnd();
}

void CXMLEmitter::write(const CYAMLMap& map)
{
    mapStart(STYLE_ANY);
    for (const auto& key : map.getKeyTexts()) {
        const auto& entry = map.entryOf(key);
        write(entry.first);
        write(static_cast<const CYAMLObject&>(*entry.second));
    }
    mapEnd();
}

void CXMLEmitter::writeMapStart(const CYAMLMap& map)
{
    mapStart(map.getStyle());
}

void CXMLEmitter::writeMapEnd()
{
    mapEnd();
}

void CXMLEmitter::writeSequenceStart(const CYAMLSequence& sequence)
{
    sequenceStart(sequence.getStyle());
}

void CXMLEmitter::writeSequenceEnd()
{
    sequenceEnd();
}

void CXMLEmitter::mapStart(EFlowStyle)
{
    if (!m_tagStack.empty() && m_tagStack.back().mode == MAPPING_KEY) {
        throw IllegalStateException(KX_POS, "Mapping is not allowed as mapping key!");
    }
    openCollection("map", MAPPING_KEY);
}

void CXMLEmitter::mapEnd()
{
    closeCollection(MAPPING_KEY, "Tag stack is empty when writing mapping end!",
                    "Can not end mapping when key is expected!");
}

void CXMLEmitter::sequenceStart(EFlowStyle)
{
    openCollection("sequence", SEQUENCE);
}

void CXMLEmitter::sequenceEnd()
{
    closeCollection(SEQUENCE, "Tag stack is empty when writing sequence end!", "Can not end sequence without start!");
}

void CXMLEmitter::openCollection(const char* tag, int mode)
{
    if (!m_tagStack.empty() && m_tagStack.back().mode == MAPPING_VALUE) {
        // The key's open tag ends its line; the collection goes one level deeper.
        *m_stream << "\n";
        ++m_indentLevel;
    }
    indent();
    *m_stream << "<" << tag << ">\n";
    m_tagStack.push_back({tag, mode});
    ++m_indentLevel;
}

void CXMLEmitter::closeCollection(int mode, const char* emptyMessage, const char* wrongModeMessage)
{
    if (m_tagStack.empty()) {
        throw IllegalStateException(KX_POS, emptyMessage);
    }
    if (m_tagStack.back().mode != mode) {
        throw IllegalStateException(KX_POS, wrongModeMessage);
    }
    closeElement();
    // A collection that was the value of a key also closes the key's element.
    if (!m_tagStack.empty() && m_tagStack.back().mode == MAPPING_VALUE) {
        closeElement();
    }
}

void CXMLEmitter::closeElement()
{
    --m_indentLevel;
    indent();
    *m_stream << "</" << m_tagStack.back().tag << ">\n";
    m_tagStack.pop_back();
}

template <typename T>
void CXMLEmitter::writeElement(const std::string& key, const T& value)
{
    indent();
    *m_stream << "<" << key << ">" << value << "</" << key << ">\n";
}

void CXMLEmitter::writeMappingPair(const std::string& key, bool value)
{
    writeElement(key, value);
}

void CXMLEmitter::writeMappingPair(const std::string& key, double value)
{
    writeElement(key, value);
}

void CXMLEmitter::writeMappingPair(const std::string& key, unsigned int value)
{
    writeElement(key, value);
}

void CXMLEmitter::writeMappingPair(const std::string& key, long long value)
{
    writeElement(key, value);
}

void CXMLEmitter::writeMappingPair(const std::string& key, const std::string& value)
{
    writeElement(key, escapeSpecialChars(value));
}

void CXMLEmitter::writeMappingPair(const std::string& key, const CYAMLObject& value)
{
    if (value.isEmpty()) {
        return;
    }
    write(key);
    write(value);
}

} // namespace kestrix
