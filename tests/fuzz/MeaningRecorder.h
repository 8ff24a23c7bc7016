#pragma once

#include <string>

#include "IEmitter.h"

namespace kestrix_fuzz {

/// An emitter that records what a `serialize` says rather than how it would look: the structure,
/// and for each scalar its text, expression text and quoted text, without anchors, tags or
/// styles. Two objects mean the same when they record the same.
class MeaningRecorder : public kestrix::IEmitter {
public:
    using IEmitter::write;
    using IEmitter::writeMappingPair;

    const std::string& text() const { return m_text; }
    /// Whether a character literal was seen that libyaml can only write double-quoted (a tab):
    /// it does not survive a save. A longer single-quoted text that libyaml must double-quote is
    /// recorded with the quoted text it has after saving, its plain text.
    bool hasUnwritableCharacter() const { return m_hasUnwritableCharacter; }

    void startStream(const std::string& header) override;
    void startStream() override;
    void endStream() override;
    void startDocument(bool isImplicit) override;
    void endDocument(bool isImplicit) override;
    std::string escapeSpecialChars(const std::string& text) override;

    void write(const kestrix::CYAMLScalar& scalar) override;
    void write(const kestrix::CYAMLSequence& sequence) override;
    void write(const kestrix::CYAMLMap& map) override;
    void write(const std::string& value) override;

    void writeMapStart(const kestrix::CYAMLMap& map) override;
    void writeMapEnd() override;
    void writeSequenceStart(const kestrix::CYAMLSequence& sequence) override;
    void writeSequenceEnd() override;
    void mapStart(EFlowStyle style = STYLE_ANY) override;
    void mapEnd() override;
    void sequenceStart(EFlowStyle style = STYLE_ANY) override;
    void sequenceEnd() override;

    void writeMappingPair(const std::string& key, bool value) override;
    void writeMappingPair(const std::string& key, double value) override;
    void writeMappingPair(const std::string& key, unsigned int value) override;
    void writeMappingPair(const std::string& key, long long value) override;
    void writeMappingPair(const std::string& key, const std::string& value) override;
    void writeMappingPair(const std::string& key, const kestrix::CYAMLObject& value) override;

private:
    /// Appends `text` with control and non-ASCII bytes in hexadecimal, so that lines stay lines.
    void append(const std::string& text);

    std::string m_text;
    bool m_hasUnwritableCharacter = false;
};

} // namespace kestrix_fuzz
