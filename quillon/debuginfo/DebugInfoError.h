#pragma once

#include <stdexcept>
#include <string>

namespace quillon::debuginfo {

/// Failure of the debug information layer: a file that cannot be read, a DWARF construct that is
/// not supported, a location that cannot be evaluated. The text names the file or the construct.
class DebugInfoError : public std::runtime_error {
public:
    explicit DebugInfoError(const std::string& message);
};

} // namespace quillon::debuginfo
