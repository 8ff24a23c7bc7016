#pragma once

#include "expr/Node.h"
#include "expr/Token.h"
#include "expr/TypeTextParser.h"

#include <memory>
#include <string>
#include <vector>

namespace quillon::expr {

/// A parsed expression and the display format written behind a comma (`x,h`), if any.
struct ParsedExpression {
    std::unique_ptr<Node> root;
    std::string format;
};

/// Recursive-descent parser of C expressions with C's precedence. Type names in casts and sizeof
/// are read against the debug information's types.
class Parser {
public:
    explicit Parser(const TypeTextParser& types) : m_types(types) {}

    /// Throws ExprError with the column of the first token that does not fit.
    ParsedExpression parse(const std::string& text);

private:
    using NodePtr = std::unique_ptr<Node>;

    NodePtr expression();
    NodePtr assignment();
    NodePtr conditional();
    NodePtr binary(int level);
    NodePtr cast();
    NodePtr unary();
    NodePtr unaryOperation();
    /// Counts one level of nesting; too deep a text is an error, not a stack overflow.
    void enter();
    NodePtr postfix();
    NodePtr primary();
    const debuginfo::Type* typeName();

    const Token& peek(std::size_t ahead = 0) const;
    const Token& take() { return m_tokens[m_pos++]; }
    void expect(const char* punctuator);
    [[noreturn]] void unexpected(const Token& token) const;
    bool atTypeName(std::size_t ahead) const;

    const TypeTextParser& m_types;
    std::vector<Token> m_tokens;
    std::size_t m_pos = 0;
    unsigned m_depth = 0;
};

} // namespace quillon::expr
