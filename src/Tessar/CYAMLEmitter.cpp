#include "CYAMLEmitter.h"

#include "CYAMLScalarAnalysis.h"
#include "IOException.h"
#include "IllegalArgumentException.h"
#include "IllegalStateException.h"

namespace kestrix {

namespace {

std::ostream* streamOf(const std::shared_ptr<IStream>& stream)
{
    if (!stream) {
        throw IllegalArgumentException(KX_POS, "Output stream of the emitter is null!");
    }
    return &stream->getStream();
}

std::string problemOf(const yaml_emitter_t* emitter)
{
    return emitter->problem != nullptr ? emitter->problem : "";
}

} // namespace

CYAMLEmitter::CYAMLEmitter(std::shared_ptr<IStream> stream) : CYAMLEmitter(streamOf(stream))
{
    m_streamOwner = std::move(stream);
}

CYAMLEmitter::CYAMLEmitter(std::ostream* stream) : m_emitter(new yaml_emitter_t), m_stream(stream)
{
    if (stream == nullptr) {
        delete m_emitter;
        throw IllegalArgumentException(KX_POS, "Output stream of the emitter is null!");
    }
    // libyaml's output settings stay at their defaults on purpose.
    if (!yaml_emitter_initialize(m_emitter)) {
        delete m_emitter;
        throw IOException(KX_POS, "Can not initialize the YAML emitter!");
    }
}

CYAMLEmitter::~CYAMLEmitter()
{
    yaml_emitter_delete(m_emitter);
    delete m_emitter;
}

int CYAMLEmitter::outputHandler(void* data, unsigned char* buffer, size_t size)
{
    // libyaml escapes NUL in scalars, so writing `size` bytes equals inserting the text up to a
    // terminator. Stream failures are not reported: a broken stream does not stop the emitter.
    static_cast<std::ostream*>(data)->write(reinterpret_cast<const char*>(buffer), static_cast<std::streamsize>(size));
    return 1;
}

bool CYAMLEmitter::tryEmit(yaml_event_t* event)
{
    if (m_isFailed) {
        yaml_event_delete(event);
        throw IllegalStateException(KX_POS, "YAML emitter can not be used after an earlier error!");
    }
    // libyaml owns the event from here on, also when emitting fails.
    m_isFailed = !yaml_emitter_emit(m_emitter, event);
    return !m_isFailed;
}

void CYAMLEmitter::emit(yaml_event_t* event, const char* prefix)
{
    if (!tryEmit(event)) {
        throw IOException(KX_POS, prefix + problemOf(m_emitter));
    }
}

void CYAMLEmitter::emitEnd(int (*init)(yaml_event_t*), const char* prefix)
{
    yaml_event_t event;
    init(&event);
    emit(&event, prefix);
}

void CYAMLEmitter::startStream(const std::string& header)
{
    *m_stream << header;
    startStream();
}

void CYAMLEmitter::startStream()
{
    // libyaml takes one output for the life of the emitter (it asserts on a second one).
    if (m_emitter->write_handler == nullptr) {
        yaml_emitter_set_output(m_emitter, &CYAMLEmitter::outputHandler, m_stream);
    }
    yaml_event_t event;
    yaml_stream_start_event_initialize(&event, YAML_UTF8_ENCODING);
    emit(&event, "Emitter start stream error: ");
}

void CYAMLEmitter::endStream()
{
    emitEnd(&yaml_stream_end_event_initialize, "Emitter end stream error: ");
}

void CYAMLEmitter::startDocument(bool isImplicit)
{
    m_levels.clear();
    yaml_event_t event;
    yaml_document_start_event_initialize(&event, nullptr, nullptr, nullptr, isImplicit ? 1 : 0);
    emit(&event, "Emitter start document error: ");
}

void CYAMLEmitter::endDocument(bool isImplicit)
{
    yaml_event_t event;
    yaml_document_end_event_initialize(&event, isImplicit ? 1 : 0);
    emit(&event, "Emitter end document error: ");
}

void CYAMLEmitter::endDocumentAndStream()
{
    endDocument(false);
    endStream();
}

std::string CYAMLEmitter::escapeSpecialChars(const std::string& text)
{
    // libyaml quotes and escapes what needs it.
    return text;
}

void CYAMLEmitter::write(const CYAMLScalar& scalar)
{
    if (isKeptAsWritten(scalar)) {
        emitScalar(scalar);
    } else {
        // Plain text keeps its expression text in any form libyaml chooses.
        emitScalar(scalar.toPlainText());
    }
    advance();
}

bool CYAMLEmitter::isKeptAsWritten(const CYAMLScalar& scalar) const
{
    // Plain implicit text reads back as plain text, a double-quoted string as itself.
    const bool isPlainImplicit = scalar.getPlainImplicit() != 0 && scalar.getQuotedImplicit() == 0;
    if (isPlainImplicit || scalar.getTag() == CYAMLScalar::NON_SPECIFIC_TAG ||
        (scalar.getStyle() == YAML_DOUBLE_QUOTED_SCALAR_STYLE && !scalar.isPlainText())) {
        return true;
    }
    const bool isFlow = !m_levels.empty() && m_levels.back().isFlow;
    const bool isKey = !m_levels.empty() && m_levels.back().isMapping && m_levels.back().isKeyNext;
    const CYAMLScalar read = CYAMLScalarAnalysis::readBack(scalar, isFlow, isKey);
    const std::string expression = toExpressionText(scalar);
    const bool isSame = toExpressionText(read) == expression && toQuotedText(read) == toQuotedText(scalar);
    // A character or string literal that libyaml cannot keep has no form that keeps it.
    return isSame || expression != scalar.getValue();
}

void CYAMLEmitter::emitScalar(const CYAMLScalar& scalar)
{
    yaml_event_t event;
    scalar.initStartEvent(&event);
    if (!tryEmit(&event)) {
        throw IOException(KX_POS, "YAML emitter error!")
            .add("error", problemOf(m_emitter))
            .add("scalar", scalar.getValue());
    }
}

void CYAMLEmitter::emitStart(const CYAMLObject& collection, const char* prefix)
{
    yaml_event_t event;
    collection.initStartEvent(&event);
    const bool isMapping = event.type == YAML_MAPPING_START_EVENT;
    const bool isFlowStyle = isMapping ? event.data.mapping_start.style == YAML_FLOW_MAPPING_STYLE
                                       : event.data.sequence_start.style == YAML_FLOW_SEQUENCE_STYLE;
    const bool isFlow = (!m_levels.empty() && m_levels.back().isFlow) || isFlowStyle;
    emit(&event, prefix);
    m_levels.push_back(Level{isFlow, isMapping, true});
}

void CYAMLEmitter::emitCollectionEnd(int (*init)(yaml_event_t*), const char* prefix)
{
    emitEnd(init, prefix);
    if (!m_levels.empty()) {
        m_levels.pop_back();
    }
    advance();
}

void CYAMLEmitter::advance()
{
    if (!m_levels.empty() && m_levels.back().isMapping) {
        m_levels.back().isKeyNext = !m_levels.back().isKeyNext;
    }
}

void CYAMLEmitter::write(const CYAMLSequence& sequence)
{
    emitStart(sequence, "YAML emitter error in sequence: ");
    for (const auto& item : sequence.getItems()) {
        write(item);
    }
    emitCollectionEnd(&yaml_sequence_end_event_initialize, "YAML emitter error: ");
}

void CYAMLEmitter::write(const CYAMLMap& map)
{
    emitStart(map, "YAML m_emitter error: ");
    for (const auto& key : map.getKeyTexts()) {
        const auto& entry = map.entryOf(key);
        write(entry.first);
        write(static_cast<const CYAMLObject&>(*entry.second));
    }
    emitCollectionEnd(&yaml_mapping_end_event_initialize, "YAML emitter error: ");
}

void CYAMLEmitter::write(const std::string& value)
{
    write(CYAMLScalar(value));
}

void CYAMLEmitter::writeMapStart(const CYAMLMap& map)
{
    emitStart(map, "YAML emitter error: ");
}

void CYAMLEmitter::writeMapEnd()
{
    emitCollectionEnd(&yaml_mapping_end_event_initialize, "YAML emitter error: ");
}

void CYAMLEmitter::writeSequenceStart(const CYAMLSequence& sequence)
{
    emitStart(sequence, "YAML emitter error: ");
}

void CYAMLEmitter::writeSequenceEnd()
{
    emitCollectionEnd(&yaml_sequence_end_event_initialize, "YAML emitter error: ");
}

void CYAMLEmitter::mapStart(EFlowStyle style)
{
    writeMapStart(CYAMLMap(CYAMLObject::swapBlockAndFlow(style)));
}

void CYAMLEmitter::mapEnd()
{
    writeMapEnd();
}

void CYAMLEmitter::sequenceStart(EFlowStyle style)
{
    writeSequenceStart(CYAMLSequence(CYAMLObject::swapBlockAndFlow(style)));
}

void CYAMLEmitter::sequenceEnd()
{
    writeSequenceEnd();
}

void CYAMLEmitter::writeMappingPair(const std::string& key, bool value)
{
    write(CYAMLScalar(key));
    write(CYAMLScalar(value ? "true" : "false"));
}

void CYAMLEmitter::writeMappingPair(const std::string& key, double value)
{
    write(CYAMLScalar(key));
    write(CYAMLScalar(value));
}

void CYAMLEmitter::writeMappingPair(const std::string& key, unsigned int value)
{
    write(CYAMLScalar(key));
    write(CYAMLScalar(value));
}

void CYAMLEmitter::writeMappingPair(const std::string& key, long long value)
{
    write(CYAMLScalar(key));
    write(CYAMLScalar(value));
}

void CYAMLEmitter::writeMappingPair(const std::string& key, const std::string& value)
{
    write(CYAMLScalar(key));
    write(CYAMLScalar(value));
}

void CYAMLEmitter::writeMappingPair(const std::string& key, const CYAMLObject& value)
{
    if (value.isEmpty()) {
        return;
    }
    write(CYAMLScalar(key));
    write(value);
}

} // namespace kestrix
