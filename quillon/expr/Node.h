#pragma once

#include "expr/Token.h"

#include "debuginfo/Type.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace quillon::expr {

/// A node of a parsed expression.
struct Node {
    enum class Kind {
        Integer,     ///< literal: token
        Floating,    ///< literal: token
        Character,   ///< literal: token
        String,      ///< literal: token.text holds the bytes
        Name,        ///< name
        Register,    ///< `@name`: name
        Member,      ///< children[0].name
        Arrow,       ///< children[0]->name
        Index,       ///< children[0][children[1]]
        Call,        ///< children[0](children[1...])
        Unary,       ///< op children[0]: & * + - ~ !
        PreIncrement,  ///< op is "++" or "--"
        PostIncrement, ///< op is "++" or "--"
        Cast,        ///< (type) children[0]
        SizeofType,  ///< sizeof(type)
        SizeofValue, ///< sizeof children[0]
        Binary,      ///< children[0] op children[1], without && and ||
        LogicalAnd,
        LogicalOr,
        Conditional, ///< children[0] ? children[1] : children[2]
        Assign,      ///< children[0] op children[1]: = += -= ...
    };

    Kind kind;
    std::size_t position = 0; ///< offset of the operator or operand in the text
    std::string op;
    std::string name;
    Token token;
    const debuginfo::Type* type = nullptr;
    std::vector<std::unique_ptr<Node>> children;

    Node(Kind k, std::size_t pos) : kind(k), position(pos) {}
    std::size_t column() const { return position + 1; }
    const Node& child(std::size_t i) const { return *children[i]; }
};

} // namespace quillon::expr
