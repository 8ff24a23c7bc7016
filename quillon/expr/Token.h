#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillon::expr {

/// One token of an expression. `position` is the offset of its first character in the text.
struct Token {
    enum class Kind { End, Identifier, Integer, Floating, Character, String, Punctuator, Register };

    Kind kind = Kind::End;
    std::string text;            ///< as written; punctuators: the operator; strings: decoded bytes
    std::size_t position = 0;
    std::uint64_t integer = 0;   ///< Integer, Character
    double floating = 0;         ///< Floating
    bool isUnsigned = false;     ///< Integer: suffix u
    unsigned longs = 0;          ///< Integer: suffix l (1) or ll (2)
    bool isFloat = false;        ///< Floating: suffix f
    bool decimal = true;         ///< Integer: written in decimal

    bool is(const char* punctuator) const
    {
        return kind == Kind::Punctuator && text[0] == punctuator[0] && text == punctuator;
    }
    /// Column from 1, for messages.
    std::size_t column() const { return position + 1; }
};

} // namespace quillon::expr
