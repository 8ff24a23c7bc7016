#include "expr/ExprError.h"

namespace quillon::expr {
namespace {

std::string describe(const std::string& problem, std::optional<std::size_t> column)
{
    return column ? problem + " (column " + std::to_string(*column) + ")" : problem;
}

} // namespace

ExprError::ExprError(const std::string& problem, std::optional<std::size_t> column)
    : std::runtime_error(describe(problem, column)), m_problem(problem), m_column(column)
{
}

} // namespace quillon::expr
