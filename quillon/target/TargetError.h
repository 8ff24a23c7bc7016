#pragma once

#include <stdexcept>
#include <string>

namespace quillon::target {

/// Failure of an operation on the simulated core. The kind lets the layers above choose their result code.
class TargetError : public std::runtime_error {
public:
    enum class Kind {
        InvalidArgument, ///< unknown register or CPU, bad memory layout, bad option
        BadAddress,      ///< memory outside every area
        Running,         ///< the operation needs a stopped target
        Engine,          ///< the emulator refused a call
    };

    TargetError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

} // namespace quillon::target
