#pragma once

#include <stdexcept>
#include <string>

namespace quillon::services {

/// Failure of a build manager operation that is refused at once (a build that is started and fails shows in
/// the build status instead). The text names the scope, option, value or file at fault.
class BuildError : public std::runtime_error {
public:
    enum class Kind {
        BadScope,        ///< neither the project nor one of its sources
        BadOption,       ///< no such option, a value it cannot take, an unknown custom operation
        BadConfiguration, ///< not now or not with this configuration: a build is active, no build section
        NotAvailable,    ///< the operation does not apply to this option or scope
        FileNotFound,    ///< a file that is not one of the project's sources
    };

    BuildError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

} // namespace quillon::services
