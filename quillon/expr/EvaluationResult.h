#pragma once

#include "expr/Scalar.h"

#include "debuginfo/Type.h"

#include <cstdint>
#include <string>

namespace quillon::expr {

/// What an evaluation gives the debugger: the value's text, its scalar form and its type.
struct EvaluationResult {
    std::string text;
    Scalar scalar;
    std::string typeName;      ///< C type text: "int", "struct point *"
    std::uint64_t byteSize = 0;
    debuginfo::Type::Kind kind = debuginfo::Type::Kind::Void; ///< without typedefs and qualifiers
};

} // namespace quillon::expr
