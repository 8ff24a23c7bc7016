#pragma once

#include <stdexcept>
#include <string>

namespace quillon {

/// A workspace file that cannot be used; `what()` is the one-line message of `Workspace`.
class WorkspaceError : public std::runtime_error {
public:
    explicit WorkspaceError(const std::string& message) : std::runtime_error(message) {}
};

} // namespace quillon
