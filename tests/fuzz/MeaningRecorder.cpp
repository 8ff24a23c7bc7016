#include "MeaningRecorder.h"

#include <cstdio>

#include "CYAMLScalarAnalysis.h"

using namespace kestrix;

namespace kestrix_fuzz {

void MeaningRecorder::append(const std::string& text)
{
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7f || c == '\\') {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02x", byte);
            m_text += escaped;
        } else {
            m_text += c;
        }
    }
}

void MeaningRecorder::startStream(const std::string& header)
{
    append(header);
    startStream();
}

void MeaningRecorder::startStream() {}

void MeaningRecorder::endStream() {}

void MeaningRecorder::startDocument(bool) {}

void MeaningRecorder::endDocument(bool) {}

std::string MeaningRecorder::escapeSpecialChars(const std::string& text)
{
    return text;
}

void MeaningRecorder::write(const CYAMLScalar& scalar)
{
    const std::string expression = toExpressionText(scalar);
    std::string quoted = toQuotedText(scalar);
    if (!scalar.isPlainText() && scalar.getStyle() == YAML_SINGLE_QUOTED_SCALAR_STYLE &&
        !CYAMLScalarAnalysis(scalar.getValue()).isSingleQuotedAllowed()) {
        // libyaml writes no single quotes around such a text: a longer text is saved as plain
        // text, and a character literal has no form that keeps it.
        quoted = scalar.getValue();
        m_hasUnwritableCharacter |= expression != scalar.getValue();
    }
    m_text += "scalar [";
    append(scalar.getValue());
    m_text += "] expression [";
    append(expression);
    m_text += "] quoted [";
    append(quoted);
    m_text += "]\n";
}

void MeaningRecorder::write(const CYAMLSequence& sequence)
{
    writeSequenceStart(sequence);
    for (const auto& item : sequence.getItems()) {
        write(item);
    }
    writeSequenceEnd();
}

void MeaningRecorder::write(const CYAMLMap& map)
{
    writeMapStart(map);
    for (const auto& key : map.getKeyTexts()) {
        const auto& entry = map.entryOf(key);
        write(entry.first);
        write(static_cast<const CYAMLObject&>(*entry.second));
    }
    writeMapEnd();
}

void MeaningRecorder::write(const std::string& value)
{
    write(CYAMLScalar(value));
}

void MeaningRecorder::writeMapStart(const CYAMLMap&)
{
    m_text += "{\n";
}

void MeaningRecorder::writeMapEnd()
{
    m_text += "}\n";
}

void MeaningRecorder::writeSequenceStart(const CYAMLSequence&)
{
    m_text += "[\n";
}

void MeaningRecorder::writeSequenceEnd()
{
    m_text += "]\n";
}

void MeaningRecorder::mapStart(EFlowStyle)
{
    writeMapStart(CYAMLMap());
}

void MeaningRecorder::mapEnd()
{
    writeMapEnd();
}

void MeaningRecorder::sequenceStart(EFlowStyle)
{
    writeSequenceStart(CYAMLSequence());
}

void MeaningRecorder::sequenceEnd()
{
    writeSequenceEnd();
}

void MeaningRecorder::writeMappingPair(const std::string& key, bool value)
{
    write(key), write(CYAMLScalar(value ? "true" : "false"));
}

void MeaningRecorder::writeMappingPair(const std::string& key, double value)
{
    write(key), write(CYAMLScalar(value));
}

void MeaningRecorder::writeMappingPair(const std::string& key, unsigned int value)
{
    write(key), write(CYAMLScalar(value));
}

void MeaningRecorder::writeMappingPair(const std::string& key, long long value)
{
    write(key), write(CYAMLScalar(value));
}

void MeaningRecorder::writeMappingPair(const std::string& key, const std::string& value)
{
    write(key), write(CYAMLScalar(value));
}

void MeaningRecorder::writeMappingPair(const std::string& key, const CYAMLObject& value)
{
    if (!value.isEmpty()) {
        write(key), write(value);
    }
}

} // namespace kestrix_fuzz
