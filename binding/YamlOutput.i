// Writers of YAML and XML text, and the profiler interval validator.
// The YAML value classes are opaque here: managed callers only pass them to IEmitter.
// IEmitter is declared by hand so that overloads are numbered as callers know them.

%{
#include "CIntervalValidator.h"
#include "CXMLEmitter.h"
#include "CYAMLEmitter.h"
#include "EmitterFactory.h"
#include "IEmitter.h"
%}

%shared_ptr(kestrix::IEmitter)

namespace kestrix {

class CYAMLObject;
class CYAMLScalar;
class CYAMLSequence;
class CYAMLMap;

class IEmitter {
public:
    virtual void startStream() = 0;
    virtual void startStream(const std::string& header) = 0;
    virtual void endStream() = 0;
    virtual void startDocument(bool isImplicit) = 0;
    virtual void endDocument(bool isImplicit) = 0;
    virtual std::string escapeSpecialChars(const std::string& text) = 0;

    virtual void write(const std::string& value) = 0;
    virtual void write(const CYAMLObject& object) = 0;
    virtual void write(const CYAMLMap& map) = 0;
    virtual void write(const CYAMLSequence& sequence) = 0;
    virtual void write(const CYAMLScalar& scalar) = 0;
    virtual void writeMapOfScalars(const CYAMLMap& map);

    virtual void writeMapStart(const CYAMLMap& map) = 0;
    virtual void writeMapEnd() = 0;
    virtual void writeSequenceStart(const CYAMLSequence& sequence) = 0;
    virtual void writeSequenceEnd() = 0;
    virtual void mapStart(int style = 0) = 0;
    virtual void mapEnd() = 0;
    virtual void sequenceStart(int style = 0) = 0;
    virtual void sequenceEnd() = 0;

    virtual void writeMappingPair(const std::string& key, const CYAMLObject& value) = 0;
    virtual void writeMappingPair(const std::string& key, const std::string& value) = 0;
    virtual void writeMappingPair(const std::string& key, long long value) = 0;
    virtual void writeMappingPair(const std::string& key, unsigned int value) = 0;
    virtual void writeMappingPair(const std::string& key, double value) = 0;
    virtual void writeMappingPair(const std::string& key, bool value) = 0;
};

class EmitterFactory {
public:
    static std::shared_ptr<IEmitter> createYamlEmitter(std::shared_ptr<IStream> stream);
    static std::shared_ptr<IEmitter> createXmlEmitter(std::shared_ptr<IStream> stream);
};

class CIntervalValidator {
public:
    CIntervalValidator();
};

} // namespace kestrix
