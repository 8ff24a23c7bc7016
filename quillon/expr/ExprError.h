#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

namespace quillon::expr {

/// Failure of an expression or a type text: the problem in words and, where known, the column
/// (from 1) of the text it was found at. what() is "<problem> (column <n>)".
class ExprError : public std::runtime_error {
public:
    explicit ExprError(const std::string& problem, std::optional<std::size_t> column = std::nullopt);

    const std::string& problem() const { return m_problem; }
    std::optional<std::size_t> column() const { return m_column; }

private:
    std::string m_problem;
    std::optional<std::size_t> m_column;
};

} // namespace quillon::expr
