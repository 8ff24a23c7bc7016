#include "expr/TypeTextParser.h"

#include "expr/ExprError.h"
#include "expr/Lexer.h"

#include <algorithm>
#include <array>

namespace quillon::expr {
namespace {

using debuginfo::Type;

constexpr std::array<const char*, 10> baseWords = {"void", "char", "short", "int", "long", "float",
                                                   "double", "signed", "unsigned", "_Bool"};

bool isBaseWord(const std::string& word)
{
    return std::find(baseWords.begin(), baseWords.end(), word) != baseWords.end();
}

bool isQualifier(const std::string& word)
{
    return word == "const" || word == "volatile";
}

bool isTag(const std::string& word)
{
    return word == "struct" || word == "union" || word == "enum";
}

} // namespace

const Type* TypeTextParser::parse(const std::string& text) const
{
    const std::vector<Token> tokens = Lexer::tokenize(text);
    std::size_t pos = 0;
    const Type* type = parse(tokens, pos);
    if (tokens[pos].kind != Token::Kind::End) {
        throw ExprError("unexpected '" + tokens[pos].text + "' in type '" + text + "'", tokens[pos].column());
    }
    return type;
}

bool TypeTextParser::isTypeKeyword(const std::string& word)
{
    return isBaseWord(word) || isQualifier(word) || isTag(word);
}

bool TypeTextParser::startsTypeName(const Token& token) const
{
    if (token.kind != Token::Kind::Identifier) {
        return false;
    }
    if (isTypeKeyword(token.text)) {
        return true;
    }
    const Type* named = m_types.find(token.text, m_unit);
    return named != nullptr && named->kind() == Type::Kind::Typedef;
}

const Type* TypeTextParser::parse(const std::vector<Token>& tokens, std::size_t& pos) const
{
    return declarator(specifiers(tokens, pos), tokens, pos);
}

const Type* TypeTextParser::specifiers(const std::vector<Token>& tokens, std::size_t& pos) const
{
    const std::size_t start = tokens[pos].column();
    bool isConst = false;
    bool isVolatile = false;
    std::string baseText;
    const Type* named = nullptr;
    for (;; ++pos) {
        const Token& token = tokens[pos];
        if (token.kind != Token::Kind::Identifier) {
            break;
        }
        if (token.text == "const") {
            isConst = true;
        } else if (token.text == "volatile") {
            isVolatile = true;
        } else if (isBaseWord(token.text) && named == nullptr) {
            baseText += (baseText.empty() ? "" : " ") + token.text;
        } else if (isTag(token.text) && named == nullptr && baseText.empty()) {
            const Token& tag = tokens[pos + 1];
            if (tag.kind != Token::Kind::Identifier) {
                throw ExprError("name expected after '" + token.text + "'", tag.column());
            }
            const std::string text = token.text + " " + tag.text;
            named = m_types.find(text, m_unit);
            if (named == nullptr) {
                throw ExprError("unknown type '" + text + "'", token.column());
            }
            ++pos;
        } else if (named == nullptr && baseText.empty()) {
            named = m_types.find(token.text, m_unit);
            if (named == nullptr || named->kind() != Type::Kind::Typedef) {
                throw ExprError("unknown type '" + token.text + "'", token.column());
            }
        } else {
            break;
        }
    }
    if (named == nullptr && baseText.empty()) {
        throw ExprError("type name expected", start);
    }
    const Type* type = named;
    if (type == nullptr) {
        type = m_types.find(baseText, m_unit);
        if (type == nullptr) {
            throw ExprError("unknown type '" + baseText + "'", start);
        }
    }
    if (isConst) {
        type = m_types.qualified(type, Type::Kind::Const);
    }
    if (isVolatile) {
        type = m_types.qualified(type, Type::Kind::Volatile);
    }
    return type;
}

const Type* TypeTextParser::declarator(const Type* base, const std::vector<Token>& tokens, std::size_t& pos) const
{
    const Type* type = base;
    while (tokens[pos].is("*") || (tokens[pos].kind == Token::Kind::Identifier && isQualifier(tokens[pos].text))) {
        if (tokens[pos].is("*")) {
            type = m_types.pointerTo(type);
        } else {
            type = m_types.qualified(type, tokens[pos].text == "const" ? Type::Kind::Const : Type::Kind::Volatile);
        }
        ++pos;
    }
    std::vector<std::optional<std::uint64_t>> dimensions;
    while (tokens[pos].is("[")) {
        const Token& count = tokens[pos + 1];
        if (count.is("]")) {
            dimensions.emplace_back();
            pos += 2;
            continue;
        }
        if (count.kind != Token::Kind::Integer) {
            throw ExprError("array size expected", count.column());
        }
        if (!tokens[pos + 2].is("]")) {
            throw ExprError("']' expected", tokens[pos + 2].column());
        }
        dimensions.emplace_back(count.integer);
        pos += 3;
    }
    for (auto it = dimensions.rbegin(); it != dimensions.rend(); ++it) {
        type = m_types.arrayOf(type, *it);
    }
    return type;
}

} // namespace quillon::expr
