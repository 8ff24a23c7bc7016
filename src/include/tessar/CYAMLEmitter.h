#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "IEmitter.h"
#include "IStream.h"

namespace kestrix {

/// IEmitter on libyaml's event emitter, with libyaml's default output settings.
class CYAMLEmitter : public IEmitter {
public:
    explicit CYAMLEmitter(std::shared_ptr<IStream> stream);
    /// Writes to `stream`, which the caller keeps alive (as `toString` does with a local one).
    explicit CYAMLEmitter(std::ostream* stream);
    ~CYAMLEmitter();
    CYAMLEmitter(const CYAMLEmitter&) = delete;
    CYAMLEmitter& operator=(const CYAMLEmitter&) = delete;

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

    /// Ends the open document (explicitly) and the stream at once.
    void endDocumentAndStream();

private:
    /// A collection being written: how libyaml lays it out, and where its next node goes.
    struct Level {
        bool isFlow;
        bool isMapping;
        bool isKeyNext;
    };

    /// Whether `scalar`, written as it is in the next place, reads back with the same expression
    /// and quoted texts. Not so when libyaml falls back to a quoted style, as for a tagged plain
    /// text that cannot stand plain, or a single-quoted or block text that needs escapes.
    bool isKeptAsWritten(const CYAMLScalar& scalar) const;
    void emitScalar(const CYAMLScalar& scalar);
    /// Emits the start event of a sequence or mapping and enters it.
    void emitStart(const CYAMLObject& collection, const char* prefix);
    /// Emits the end of the current collection and leaves it.
    void emitCollectionEnd(int (*init)(yaml_event_t*), const char* prefix);
    /// A node has filled the next place of the current collection.
    void advance();
    /// Emits `event`, which libyaml takes over; false when libyaml fails.
    bool tryEmit(yaml_event_t* event);
    /// Emits `event`; on failure IOException `prefix` + libyaml's problem text.
    void emit(yaml_event_t* event, const char* prefix);
    /// Emits an end event made by `init`, with the message prefix of that end.
    void emitEnd(int (*init)(yaml_event_t*), const char* prefix);
    static int outputHandler(void* data, unsigned char* buffer, size_t size);

    yaml_emitter_t* m_emitter;
    std::ostream* m_stream;
    std::shared_ptr<IStream> m_streamOwner;
    /// Set by a failed emit: libyaml's emitter is then only good for deletion.
    bool m_isFailed = false;
    /// The open collections, outermost first.
    std::vector<Level> m_levels;
};

} // namespace kestrix
