#pragma once

#include <deque>
#include <memory>
#include <ostream>
#include <string>

#include "IEmitter.h"
#include "IStream.h"

namespace kestrix {

/// IEmitter that writes XML: mapping keys become elements holding their values, sequence
/// items `<item>` elements. A stack of open elements tells what each scalar is.
class CXMLEmitter : public IEmitter {
public:
    explicit CXMLEmitter(std::shared_ptr<IStream> stream);
    ~CXMLEmitter() = default;
    CXMLEmitter(const CXMLEmitter&) = delete;
    CXMLEmitter& operator=(const CXMLEmitter&) = delete;

    using IEmitter::write;
    using IEmitter::writeMappingPair;

    void startStream(const std::string& header) override;
    void startStream() override;
    void endStream() override;
    void startDocument(bool isImplicit) override;
    void endDocument(bool isImplicit) override;
    std::string escapeSpecialChars(const std::string& text) override;

    void write(const CYAMLScalar& scalar) override;
    void write(const CYAMLSequence& sequence) override;
    void write(const CYAMLMap& map) override;
    void write(const std::string& value) override;

    void writeMapStart(const CYAMLMap& map) override;
    void writeMapEnd() override;
    void writeSequenceStart(const CYAMLSequence& sequence) override;
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
    void writeMappingPair(const std::string& key, const CYAMLObject& value) override;

private:
    /// What the next scalar is inside the open element.
    enum EMode { SEQUENCE = 1, MAPPING_KEY = 2, MAPPING_VALUE = 3 };

    struct StackItem {
        std::string tag;
        int mode;
    };

    void indent();
    /// Opens the element of a mapping or sequence, inside the element of its key if it is a value.
    void openCollection(const char* tag, int mode);
    /// Closes the innermost element, which must be a collection of `mode`.
    void closeCollection(int mode, const char* emptyMessage, const char* wrongModeMessage);
    /// Closes the innermost element, one level up.
    void closeElement();
    template <typename T>
    void writeElement(const std::string& key, const T& value);

    std::deque<StackItem> m_tagStack;
    std::ostream* m_stream;
    std::shared_ptr<IStream> m_streamOwner;
    int m_indentLevel = 0;
    std::string m_indentUnit = "  ";
};

} // namespace kestrix
