#pragma once

#include <yaml.h>

#include <string>

#include "IKestrixYAMLInput.h"
#include "IYAMLContentHandler.h"

namespace kestrix {

/// Pulls libyaml's events from an input and dispatches them to a content handler. Every
/// failure comes out as ParserException whose "testSpecification" item shows the place.
class CYAMLParser {
public:
    CYAMLParser();
    ~CYAMLParser();

    CYAMLParser(const CYAMLParser&) = delete;
    CYAMLParser& operator=(const CYAMLParser&) = delete;

    /// `handler` is not owned.
    void setContentHandler(IYAMLContentHandler* handler);
    /// Parses the whole stream; the parser can be used for one input only.
    void parse(IKestrixYAMLInput& input);

private:
    void dispatch(const yaml_event_t& event, bool& streamEnded);
    [[noreturn]] void throwSyntaxError(IKestrixYAMLInput& input);
    /// ParserException `desc` whose "testSpecification" shows `message` at the parser's place.
    [[noreturn]] void throwAtMark(IKestrixYAMLInput& input, const char* desc, const std::string& message);

    yaml_parser_t m_parser;
    IYAMLContentHandler* m_handler = nullptr;
};

} // namespace kestrix
