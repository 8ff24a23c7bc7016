#pragma once

#include "expr/Token.h"

#include <string>
#include <vector>

namespace quillon::expr {

/// Splits a C expression into tokens. A register is written `@name`. A character constant may
/// hold a quote or a backslash unescaped ('''), as value texts of assignments arrive.
class Lexer {
public:
    /// All tokens of the text, ending with a Token::Kind::End. Throws ExprError with the column of a
    /// character that starts no token, an unterminated literal, a malformed number.
    static std::vector<Token> tokenize(const std::string& text);

private:
    explicit Lexer(const std::string& text) : m_text(text) {}

    Token next();
    Token number();
    Token identifier(Token::Kind kind, std::size_t start);
    Token character();
    Token string();
    Token punctuator();
    /// Decodes one character of a literal at m_pos, escapes included.
    unsigned char literalCharacter(std::size_t literalStart);
    char peek(std::size_t ahead = 0) const;

    const std::string& m_text;
    std::size_t m_pos = 0;
};

} // namespace quillon::expr
