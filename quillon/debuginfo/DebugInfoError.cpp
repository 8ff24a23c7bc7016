#include "debuginfo/DebugInfoError.h"

namespace quillon::debuginfo {

DebugInfoError::DebugInfoError(const std::string& message) : std::runtime_error(message) {}

} // namespace quillon::debuginfo
