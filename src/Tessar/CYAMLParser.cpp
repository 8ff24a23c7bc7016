#include "CYAMLParser.h"

#include <exception>

#include "Exceptions.h"

namespace kestrix {

namespace {

/// What the read handler of libyaml works with: the input, and an exception that the input
/// raised, kept to be thrown again once libyaml has returned.
struct ReadContext {
    IKestrixYAMLInput* input;
    std::exception_ptr error;
};

int readHandler(void* data, unsigned char* buffer, size_t size, size_t* sizeRead)
{
    auto* context = static_cast<ReadContext*>(data);
    try {
        *sizeRead = context->input->read(buffer, size);
        return 1;
    } catch (...) {
        // No exception may cross libyaml's C frames; failing the read stops the parse.
        context->error = std::current_exception();
        *sizeRead = 0;
        return 0;
    }
}

/// Deletes the event when the scope ends, also by an exception.
class EventGuard {
public:
    explicit EventGuard(yaml_event_t& event) : m_event(event) {}
    ~EventGuard() { yaml_event_delete(&m_event); }
    EventGuard(const EventGuard&) = delete;
    EventGuard& operator=(const EventGuard&) = delete;

private:
    yaml_event_t& m_event;
};

const char* errorWord(yaml_error_type_t error)
{
    switch (error) {
    case YAML_NO_ERROR: return "OK";
    case YAML_MEMORY_ERROR: return "Cannot allocate or reallocate a block of memory.";
    case YAML_READER_ERROR: return "Cannot read or decode the input stream.";
    case YAML_SCANNER_ERROR: return "Cannot scan the input stream.";
    case YAML_PARSER_ERROR: return "Cannot parse the input stream.";
    case YAML_COMPOSER_ERROR: return "Cannot compose a YAML document.";
    case YAML_WRITER_ERROR: return "Cannot write to the output stream.";
    case YAML_EMITTER_ERROR: return "Cannot emit a YAML stream.";
    }
    return "Unknown error.";
}

} // namespace

CYAMLParser::CYAMLParser()
{
    if (yaml_parser_initialize(&m_parser) == 0) {
        throw IllegalStateException(KX_POS, "Can not initialize YAML parser!");
    }
}

CYAMLParser::~CYAMLParser()
{
    yaml_parser_delete(&m_parser);
}

void CYAMLParser::setContentHandler(IYAMLContentHandler* handler)
{
    m_handler = handler;
}

void CYAMLParser::parse(IKestrixYAMLInput& input)
{
    if (m_handler == nullptr) {
        throw IllegalStateException(KX_POS, "YAML parser has no content handler!");
    }
    if (m_parser.read_handler != nullptr) {
        throw IllegalStateException(KX_POS, "YAML parser has already read an input!");
    }
    ReadContext context{&input, nullptr};
    yaml_parser_set_input(&m_parser, readHandler, &context);

    bool streamEnded = false;
    while (!streamEnded) {
        yaml_event_t event;
        if (yaml_parser_parse(&m_parser, &event) == 0) {
            if (context.error) {
                std::rethrow_exception(context.error);
            }
            throwSyntaxError(input);
        }
        EventGuard guard(event);
        try {
            dispatch(event, streamEnded);
        } catch (const IOException& e) {
            throwAtMark(input, "IO error", e.what());
        } catch (const IllegalStateException& e) {
            throwAtMark(input, "Illegal state", e.what());
        } catch (const IException& e) {
            // IllegalArgumentException, ParserException and the rest of the family.
            throwAtMark(input, "Illegal argument", e.what());
        }
    }
}

void CYAMLParser::dispatch(const yaml_event_t& event, bool& streamEnded)
{
    switch (event.type) {
    case YAML_NO_EVENT:
        break;
    case YAML_STREAM_START_EVENT:
        m_handler->streamStart(event.data.stream_start.encoding);
        break;
    case YAML_STREAM_END_EVENT:
        m_handler->streamEnd();
        streamEnded = true;
        break;
    case YAML_DOCUMENT_START_EVENT: {
        const yaml_version_directive_t* version = event.data.document_start.version_directive;
        m_handler->documentStart(version != nullptr ? version->major : 0,
                                 version != nullptr ? version->minor : 0,
                                 event.data.document_start.tag_directives.start,
                                 event.data.document_start.tag_directives.end);
        break;
    }
    case YAML_DOCUMENT_END_EVENT:
        m_handler->documentEnd();
        break;
    case YAML_ALIAS_EVENT:
        m_handler->alias(event);
        break;
    case YAML_SCALAR_EVENT:
        m_handler->scalar(event);
        break;
    case YAML_SEQUENCE_START_EVENT:
        m_handler->seqStart(event);
        break;
    case YAML_SEQUENCE_END_EVENT:
        m_handler->sequenceEnd();
        break;
    case YAML_MAPPING_START_EVENT:
        m_handler->mappingStart(event);
        break;
    case YAML_MAPPING_END_EVENT:
        m_handler->mappingEnd();
        break;
    default:
        throw ParserException(KX_POS, "Unknown event type: ", static_cast<int>(event.type));
    }
}

void CYAMLParser::throwSyntaxError(IKestrixYAMLInput& input)
{
    const std::string problem = m_parser.problem != nullptr ? m_parser.problem : "";
    throwAtMark(input, "YAML syntax error", errorWord(m_parser.error) + (" " + problem));
}

void CYAMLParser::throwAtMark(IKestrixYAMLInput& input, const char* desc, const std::string& message)
{
    // The parser's current mark: where it stands when the error surfaces.
    throw ParserException(KX_POS, desc)
        .add("testSpecification", input.getErrorContext(m_parser.mark.line, m_parser.mark.column, message, 6));
}

} // namespace kestrix
