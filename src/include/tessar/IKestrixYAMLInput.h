#pragma once

#include <cstddef>
#include <string>

namespace kestrix {

/// The source of YAML text for the parser, which also shows a position in it to the user.
class IKestrixYAMLInput {
public:
    /// Fills `buffer` with at most `size` bytes; returns their count, 0 at the end.
    virtual size_t read(unsigned char* buffer, size_t size) = 0;

    /// The text a user sees for an error at `line` (from 0) and `column` (from 0).
    virtual std::string getErrorContext(size_t line, size_t column, const std::string& message,
                                        int indent) = 0;

protected:
    // Inputs live on the stack of a parse and are destroyed through their concrete classes.
    ~IKestrixYAMLInput() = default;

    /// "[Line: <line + 1>  Col: <column>]".
    static std::string positionText(size_t line, size_t column);
};

} // namespace kestrix
