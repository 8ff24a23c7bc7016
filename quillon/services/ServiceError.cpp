#include "services/ServiceError.h"

namespace quillon::services {

ServiceError::ServiceError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

const char* ServiceError::kindName(Kind kind)
{
    switch (kind) {
    case Kind::InvalidArgument:
        return "invalid argument";
    case Kind::NotFound:
        return "not found";
    case Kind::CannotAccess:
        return "cannot access";
    case Kind::BadSize:
        return "bad size";
    case Kind::NoBreakpoint:
        return "no breakpoint";
    case Kind::FileNotFound:
        return "file not found";
    case Kind::BadFile:
        return "bad file";
    case Kind::Running:
        return "running";
    case Kind::NotAvailable:
        return "not available";
    case Kind::Expression:
        return "expression";
    case Kind::Failed:
        return "failed";
    }
    return "failed";
}

} // namespace quillon::services
