#include "expr/Lexer.h"

#include "expr/ExprError.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstdlib>

namespace quillon::expr {
namespace {

bool isIdentifierStart(char c)
{
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}

bool isIdentifierChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

int digitValue(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return 99;
}

// Longest first, so that the first match is the longest.
constexpr std::array<const char*, 42> punctuators = {
    "<<=", ">>=", "->", "++", "--", "<<", ">>", "<=", ">=", "==", "!=", "&&", "||", "+=", "-=", "*=",
    "/=", "%=", "&=", "|=", "^=", "+", "-", "*", "/", "%", "<", ">", "=", "!", "~", "&", "|", "^",
    "?", ":", ".", ",", "(", ")", "[", "]",
};

} // namespace

std::vector<Token> Lexer::tokenize(const std::string& text)
{
    Lexer lexer(text);
    std::vector<Token> tokens;
    do {
        tokens.push_back(lexer.next());
    } while (tokens.back().kind != Token::Kind::End);
    return tokens;
}

char Lexer::peek(std::size_t ahead) const
{
    return m_pos + ahead < m_text.size() ? m_text[m_pos + ahead] : '\0';
}

Token Lexer::next()
{
    while (m_pos < m_text.size() && std::isspace(static_cast<unsigned char>(m_text[m_pos]))) {
        ++m_pos;
    }
    if (m_pos >= m_text.size()) {
        Token end;
        end.position = m_text.size();
        return end;
    }
    const char c = peek();
    if (std::isdigit(static_cast<unsigned char>(c)) || (c == '.' && std::isdigit(static_cast<unsigned char>(peek(1))))) {
        return number();
    }
    if (isIdentifierStart(c)) {
        return identifier(Token::Kind::Identifier, m_pos);
    }
    if (c == '@') {
        const std::size_t start = m_pos++;
        if (!isIdentifierStart(peek())) {
            throw ExprError("register name expected after '@'", start + 1);
        }
        return identifier(Token::Kind::Register, start);
    }
    if (c == '\'') {
        return character();
    }
    if (c == '"') {
        return string();
    }
    return punctuator();
}

Token Lexer::identifier(Token::Kind kind, std::size_t start)
{
    Token token;
    token.kind = kind;
    token.position = start;
    const std::size_t first = m_pos;
    while (isIdentifierChar(peek())) {
        ++m_pos;
    }
    token.text = m_text.substr(first, m_pos - first);
    return token;
}

Token Lexer::number()
{
    Token token;
    token.position = m_pos;
    const std::size_t start = m_pos;
    int base = 10;
    if (peek() == '0' && (peek(1) == 'x' || peek(1) == 'X')) {
        base = 16;
        m_pos += 2;
    } else if (peek() == '0' && (peek(1) == 'b' || peek(1) == 'B')) {
        base = 2;
        m_pos += 2;
    }
    const std::size_t digitsStart = m_pos;
    while (isIdentifierChar(peek()) || peek() == '.' ||
           ((peek() == '+' || peek() == '-') && base == 10 && (m_text[m_pos - 1] == 'e' || m_text[m_pos - 1] == 'E'))) {
        ++m_pos;
    }
    const std::string text = m_text.substr(start, m_pos - start);
    token.text = text;
    const std::string body = m_text.substr(digitsStart, m_pos - digitsStart);
    auto bad = [&]() { return ExprError("malformed number '" + text + "'", start + 1); };

    const bool floating = base == 10 && body.find_first_of(".eE") != std::string::npos;
    if (floating) {
        errno = 0;
        char* end = nullptr;
        token.floating = std::strtod(body.c_str(), &end);
        std::string suffix(end);
        if (suffix == "f" || suffix == "F") {
            token.isFloat = true;
        } else if (!suffix.empty() && suffix != "l" && suffix != "L") {
            throw bad();
        }
        token.kind = Token::Kind::Floating;
        return token;
    }

    std::size_t i = 0;
    if (base == 10 && body.size() > 1 && body[0] == '0') {
        base = 8;
    }
    token.decimal = base == 10;
    std::uint64_t value = 0;
    std::size_t digits = 0;
    for (; i < body.size() && digitValue(body[i]) < base; ++i, ++digits) {
        const std::uint64_t next = value * static_cast<unsigned>(base) + static_cast<unsigned>(digitValue(body[i]));
        if (value > (~std::uint64_t(0) - static_cast<unsigned>(digitValue(body[i]))) / static_cast<unsigned>(base) ||
            next / static_cast<unsigned>(base) != value) {
            throw ExprError("integer constant '" + text + "' is too large", start + 1);
        }
        value = next;
    }
    if (digits == 0) {
        throw bad();
    }
    for (; i < body.size(); ++i) {
        const char s = static_cast<char>(std::tolower(static_cast<unsigned char>(body[i])));
        if (s == 'u' && !token.isUnsigned) {
            token.isUnsigned = true;
        } else if (s == 'l' && token.longs < 2) {
            ++token.longs;
        } else {
            throw bad();
        }
    }
    token.kind = Token::Kind::Integer;
    token.integer = value;
    return token;
}

unsigned char Lexer::literalCharacter(std::size_t literalStart)
{
    const char c = peek();
    if (c == '\0' && m_pos >= m_text.size()) {
        throw ExprError("unterminated literal", literalStart + 1);
    }
    ++m_pos;
    if (c != '\\') {
        return static_cast<unsigned char>(c);
    }
    const char e = peek();
    ++m_pos;
    switch (e) {
    case 'n': return '\n';
    case 't': return '\t';
    case 'r': return '\r';
    case 'a': return '\a';
    case 'b': return '\b';
    case 'f': return '\f';
    case 'v': return '\v';
    case '\\': return '\\';
    case '\'': return '\'';
    case '"': return '"';
    case '?': return '?';
    case 'x': {
        unsigned value = 0;
        std::size_t n = 0;
        while (digitValue(peek()) < 16) {
            value = value * 16 + static_cast<unsigned>(digitValue(peek()));
            ++m_pos;
            ++n;
        }
        if (n == 0) {
            throw ExprError("\\x without hex digits", literalStart + 1);
        }
        return static_cast<unsigned char>(value);
    }
    default:
        if (e >= '0' && e <= '7') {
            unsigned value = static_cast<unsigned>(e - '0');
            for (int n = 1; n < 3 && peek() >= '0' && peek() <= '7'; ++n) {
                value = value * 8 + static_cast<unsigned>(peek() - '0');
                ++m_pos;
            }
            return static_cast<unsigned char>(value);
        }
        throw ExprError(std::string("unknown escape sequence '\\") + e + "'", literalStart + 1);
    }
}

Token Lexer::character()
{
    Token token;
    token.kind = Token::Kind::Character;
    token.position = m_pos;
    const std::size_t start = m_pos;
    // A character written as it stands: 'x', also ''' and '\'.
    if (m_pos + 2 < m_text.size() + 0 && m_text[m_pos + 2] == '\'' &&
        !(m_text[m_pos + 1] == '\\' && m_pos + 3 < m_text.size() && m_text[m_pos + 3] == '\'')) {
        token.integer = static_cast<unsigned char>(m_text[m_pos + 1]);
        m_pos += 3;
        token.text = m_text.substr(start, 3);
        return token;
    }
    ++m_pos;
    token.integer = literalCharacter(start);
    if (peek() != '\'') {
        throw ExprError("unterminated character constant", start + 1);
    }
    ++m_pos;
    token.text = m_text.substr(start, m_pos - start);
    return token;
}

Token Lexer::string()
{
    Token token;
    token.kind = Token::Kind::String;
    token.position = m_pos;
    const std::size_t start = m_pos++;
    while (peek() != '"') {
        if (m_pos >= m_text.size()) {
            throw ExprError("unterminated string", start + 1);
        }
        token.text += static_cast<char>(literalCharacter(start));
    }
    ++m_pos;
    return token;
}

Token Lexer::punctuator()
{
    for (const char* p : punctuators) {
        const std::size_t length = std::char_traits<char>::length(p);
        if (m_text[m_pos] == p[0] && m_text.compare(m_pos, length, p) == 0) {
            Token token;
            token.kind = Token::Kind::Punctuator;
            token.position = m_pos;
            token.text = p;
            m_pos += length;
            return token;
        }
    }
    throw ExprError(std::string("unexpected character '") + m_text[m_pos] + "'", m_pos + 1);
}

} // namespace quillon::expr
