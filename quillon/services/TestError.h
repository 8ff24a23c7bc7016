#pragma once

#include <stdexcept>
#include <string>

namespace quillon::services {

/// Failure of the test service. Its class tells the client what went wrong: a call in the wrong state, an
/// argument the service cannot take (unknown function, type or handle, a name used twice, a bad expression), or
/// a failure of the target.
class TestError : public std::runtime_error {
public:
    enum class Kind { IllegalState = 1, IllegalArgument = 2, Io = 3 };

    TestError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

} // namespace quillon::services
