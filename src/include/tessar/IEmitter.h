#pragma once

#include <memory>
#include <string>

#include "CYAMLMap.h"
#include "CYAMLObject.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"

namespace kestrix {

/// The writer that every `serialize` drives, in the vocabulary of a YAML event stream.
/// Callers keep libyaml's order: startStream, per document startDocument, one root value,
/// endDocument, and endStream.
class IEmitter {
public:
    /// Style a caller asks for: 0 leaves it to the emitter, 1 flow, 2 block. A plain number,
    /// since managed callers may pass any value (others count as 0).
    typedef int EFlowStyle;
    enum { STYLE_ANY = 0, STYLE_FLOW = 1, STYLE_BLOCK = 2 };

    virtual void startStream(const std::string& header) = 0;
    virtual void startStream() = 0;
    virtual void endStream() = 0;
    virtual void startDocument(bool isImplicit) = 0;
    virtual void endDocument(bool isImplicit) = 0;
    virtual std::string escapeSpecialChars(const std::string& text) = 0;

    virtual void write(const CYAMLScalar& scalar) = 0;
    virtual void write(const CYAMLSequence& sequence) = 0;
    virtual void write(const CYAMLMap& map) = 0;
    /// Dispatches on the object's kind to the three writers above; the same for every emitter.
    virtual void write(const CYAMLObject& object);
    virtual void write(const std::string& value) = 0;
    // A text literal is a string, not a scalar to be built.
    void write(const char* value) { write(std::string(value)); }
    /// Refuses the null emitter that a managed caller may pass to a `serialize`.
    static void checkNotNull(const std::shared_ptr<IEmitter>& emitter);

    /// A mapping whose values are all scalars; the same for every emitter.
    virtual void writeMapOfScalars(const CYAMLMap& map);

    virtual void writeMapStart(const CYAMLMap& map) = 0;
    virtual void writeMapEnd() = 0;
    virtual void writeSequenceStart(const CYAMLSequence& sequence) = 0;
    virtual void writeSequenceEnd() = 0;
    virtual void mapStart(EFlowStyle style = STYLE_ANY) = 0;
    virtual void mapEnd() = 0;
    virtual void sequenceStart(EFlowStyle style = STYLE_ANY) = 0;
    virtual void sequenceEnd() = 0;

    virtual void writeMappingPair(const std::string& key, bool value) = 0;
    virtual void writeMappingPair(const std::string& key, double value) = 0;
    virtual void writeMappingPair(const std::string& key, unsigned int value) = 0;
    virtual void writeMappingPair(const std::string& key, long long value) = 0;
    virtual void writeMappingPair(const std::string& key, const std::string& value) = 0;
    /// Writes nothing, not even the key, when `value` is empty.
    virtual void writeMappingPair(const std::string& key, const CYAMLObject& value) = 0;

    // A text literal would otherwise convert to bool, not to std::string. Derived classes
    // bring both helpers back with `using IEmitter::write; using IEmitter::writeMappingPair;`.
    void writeMappingPair(const std::string& key, const char* value) { writeMappingPair(key, std::string(value)); }

protected:
    // Not virtual: an emitter is destroyed through the shared pointer that knows its class.
    IEmitter() = default;
    ~IEmitter() = default;
    IEmitter(const IEmitter&) = default;
    IEmitter& operator=(const IEmitter&) = default;
};

typedef std::shared_ptr<IEmitter> IEmitterSPtr;

} // namespace kestrix
