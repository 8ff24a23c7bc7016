#include "expr/Parser.h"

#include "expr/ExprError.h"
#include "expr/Lexer.h"

#include <array>
#include <initializer_list>

namespace quillon::expr {
namespace {

// Binary operators by level, loosest first; && and || are levels 0 and 1.
const std::array<std::initializer_list<const char*>, 10> binaryLevels = {{
    {"||"}, {"&&"}, {"|"}, {"^"}, {"&"}, {"==", "!="}, {"<", ">", "<=", ">="}, {"<<", ">>"}, {"+", "-"},
    {"*", "/", "%"},
}};

constexpr std::array<const char*, 11> assignmentOperators = {"=", "+=", "-=", "*=", "/=", "%=",
                                                             "<<=", ">>=", "&=", "|=", "^="};

constexpr unsigned maxDepth = 256;

} // namespace

ParsedExpression Parser::parse(const std::string& text)
{
    m_tokens = Lexer::tokenize(text);
    m_pos = 0;
    m_depth = 0;
    if (peek().kind == Token::Kind::End) {
        throw ExprError("empty expression", 1);
    }
    ParsedExpression parsed;
    parsed.root = expression();
    if (peek().is(",")) {
        const Token& comma = take();
        const Token& format = take();
        if (format.kind != Token::Kind::Identifier) {
            throw ExprError("display format expected after ','", comma.column());
        }
        parsed.format = format.text;
    }
    if (peek().kind != Token::Kind::End) {
        unexpected(peek());
    }
    return parsed;
}

const Token& Parser::peek(std::size_t ahead) const
{
    const std::size_t at = m_pos + ahead;
    return at < m_tokens.size() ? m_tokens[at] : m_tokens.back();
}

void Parser::expect(const char* punctuator)
{
    if (!peek().is(punctuator)) {
        if (peek().kind == Token::Kind::End) {
            throw ExprError(std::string("'") + punctuator + "' expected at the end", peek().column());
        }
        throw ExprError(std::string("'") + punctuator + "' expected instead of '" + peek().text + "'",
                        peek().column());
    }
    ++m_pos;
}

void Parser::unexpected(const Token& token) const
{
    if (token.kind == Token::Kind::End) {
        throw ExprError("unexpected end of expression", token.column());
    }
    throw ExprError("unexpected '" + token.text + "'", token.column());
}

bool Parser::atTypeName(std::size_t ahead) const
{
    return m_types.startsTypeName(peek(ahead));
}

void Parser::enter()
{
    if (++m_depth > maxDepth) {
        throw ExprError("expression nested too deeply", peek().column());
    }
}

Parser::NodePtr Parser::expression()
{
    enter();
    NodePtr node = assignment();
    --m_depth;
    return node;
}

Parser::NodePtr Parser::assignment()
{
    NodePtr left = conditional();
    for (const char* op : assignmentOperators) {
        if (peek().is(op)) {
            auto node = std::make_unique<Node>(Node::Kind::Assign, take().position);
            node->op = op;
            node->children.push_back(std::move(left));
            node->children.push_back(assignment());
            return node;
        }
    }
    return left;
}

Parser::NodePtr Parser::conditional()
{
    NodePtr condition = binary(0);
    if (!peek().is("?")) {
        return condition;
    }
    auto node = std::make_unique<Node>(Node::Kind::Conditional, take().position);
    node->children.push_back(std::move(condition));
    node->children.push_back(expression());
    expect(":");
    node->children.push_back(conditional());
    return node;
}

Parser::NodePtr Parser::binary(int level)
{
    if (level == static_cast<int>(binaryLevels.size())) {
        return cast();
    }
    NodePtr left = binary(level + 1);
    for (;;) {
        const char* matched = nullptr;
        for (const char* op : binaryLevels[static_cast<std::size_t>(level)]) {
            if (peek().is(op)) {
                matched = op;
            }
        }
        if (matched == nullptr) {
            return left;
        }
        const Node::Kind kind = level == 0 ? Node::Kind::LogicalOr : level == 1 ? Node::Kind::LogicalAnd : Node::Kind::Binary;
        auto node = std::make_unique<Node>(kind, take().position);
        node->op = matched;
        node->children.push_back(std::move(left));
        node->children.push_back(binary(level + 1));
        left = std::move(node);
    }
}

const debuginfo::Type* Parser::typeName()
{
    return m_types.parse(m_tokens, m_pos);
}

Parser::NodePtr Parser::cast()
{
    if (peek().is("(") && atTypeName(1)) {
        auto node = std::make_unique<Node>(Node::Kind::Cast, take().position);
        node->type = typeName();
        expect(")");
        node->children.push_back(cast());
        return node;
    }
    return unary();
}

Parser::NodePtr Parser::unary()
{
    enter();
    NodePtr node = unaryOperation();
    --m_depth;
    return node;
}

Parser::NodePtr Parser::unaryOperation()
{
    const Token& token = peek();
    if (token.is("++") || token.is("--")) {
        auto node = std::make_unique<Node>(Node::Kind::PreIncrement, take().position);
        node->op = token.text;
        node->children.push_back(unary());
        return node;
    }
    if (token.is("&") || token.is("*") || token.is("+") || token.is("-") || token.is("~") || token.is("!")) {
        auto node = std::make_unique<Node>(Node::Kind::Unary, take().position);
        node->op = token.text;
        node->children.push_back(cast());
        return node;
    }
    if (token.kind == Token::Kind::Identifier && token.text == "sizeof") {
        const std::size_t position = take().position;
        if (peek().is("(") && atTypeName(1)) {
            auto node = std::make_unique<Node>(Node::Kind::SizeofType, position);
            ++m_pos;
            node->type = typeName();
            expect(")");
            return node;
        }
        auto node = std::make_unique<Node>(Node::Kind::SizeofValue, position);
        node->children.push_back(unary());
        return node;
    }
    return postfix();
}

Parser::NodePtr Parser::postfix()
{
    NodePtr node = primary();
    for (;;) {
        const Token& token = peek();
        if (token.is("[")) {
            auto index = std::make_unique<Node>(Node::Kind::Index, take().position);
            index->children.push_back(std::move(node));
            index->children.push_back(expression());
            expect("]");
            node = std::move(index);
        } else if (token.is("(")) {
            auto call = std::make_unique<Node>(Node::Kind::Call, take().position);
            call->children.push_back(std::move(node));
            if (!peek().is(")")) {
                call->children.push_back(assignment());
                while (peek().is(",")) {
                    ++m_pos;
                    call->children.push_back(assignment());
                }
            }
            expect(")");
            node = std::move(call);
        } else if (token.is(".") || token.is("->")) {
            auto member = std::make_unique<Node>(token.is(".") ? Node::Kind::Member : Node::Kind::Arrow, take().position);
            const Token& name = take();
            if (name.kind != Token::Kind::Identifier) {
                throw ExprError(std::string("member name expected after '") +
                                    (member->kind == Node::Kind::Member ? "." : "->") + "'",
                                name.column());
            }
            member->name = name.text;
            member->children.push_back(std::move(node));
            node = std::move(member);
        } else if (token.is("++") || token.is("--")) {
            auto step = std::make_unique<Node>(Node::Kind::PostIncrement, take().position);
            step->op = token.text;
            step->children.push_back(std::move(node));
            node = std::move(step);
        } else {
            return node;
        }
    }
}

Parser::NodePtr Parser::primary()
{
    const Token& token = take();
    switch (token.kind) {
    case Token::Kind::Integer:
    case Token::Kind::Floating:
    case Token::Kind::Character:
    case Token::Kind::String: {
        const Node::Kind kind = token.kind == Token::Kind::Integer    ? Node::Kind::Integer
                                : token.kind == Token::Kind::Floating ? Node::Kind::Floating
                                : token.kind == Token::Kind::Character ? Node::Kind::Character
                                                                       : Node::Kind::String;
        auto node = std::make_unique<Node>(kind, token.position);
        node->token = token;
        return node;
    }
    case Token::Kind::Identifier: {
        // A typedef's name may also name an object; the scopes decide.
        if (TypeTextParser::isTypeKeyword(token.text)) {
            throw ExprError("unexpected type name '" + token.text + "'", token.column());
        }
        auto node = std::make_unique<Node>(Node::Kind::Name, token.position);
        node->name = token.text;
        return node;
    }
    case Token::Kind::Register: {
        auto node = std::make_unique<Node>(Node::Kind::Register, token.position);
        node->name = token.text;
        return node;
    }
    default:
        break;
    }
    if (token.is("(")) {
        NodePtr inner = expression();
        expect(")");
        return inner;
    }
    --m_pos;
    unexpected(token);
}

} // namespace quillon::expr
