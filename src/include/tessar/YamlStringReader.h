#pragma once

#include <string>

#include "IKestrixYAMLInput.h"

namespace kestrix {

/// YAML text held in memory; an error is shown in an excerpt of the whole text.
class YamlStringReader : public IKestrixYAMLInput {
public:
    explicit YamlStringReader(const std::string& text);

    size_t read(unsigned char* buffer, size_t size) override;
    /// The text framed by "---" lines, indented by `indent` blanks, with a caret, the message
    /// and a banner behind the line at fault, followed by the position.
    std::string getErrorContext(size_t line, size_t column, const std::string& message,
                                int indent) override;

private:
    std::string m_text;
    size_t m_pos = 0;
};

} // namespace kestrix
