#pragma once

#include <stdexcept>
#include <string>

namespace quillon::services {

/// Failure of a Quillon service. The text says what went wrong and names what is at fault (file, address, symbol,
/// register); the kind lets the automation adapter choose its result code.
class ServiceError : public std::runtime_error {
public:
    enum class Kind {
        InvalidArgument, ///< a value the operation cannot take (list number, command, empty name)
        NotFound,        ///< no such symbol, function, source line or location
        CannotAccess,    ///< memory or a register that cannot be read or written now or at all
        BadSize,         ///< bytes per MAU, value width or register width that does not fit
        NoBreakpoint,    ///< no breakpoint at the location
        FileNotFound,    ///< a download file that does not exist
        BadFile,         ///< a download file that is no usable ELF, or does not fit the target's memory
        Running,         ///< the operation needs a stopped target
        NotAvailable,    ///< not offered by this target or not wired (expressions, symbol offsets)
        Expression,      ///< an expression or condition that cannot be evaluated
        Failed,          ///< any other failure of the operation
    };

    ServiceError(Kind kind, const std::string& message);

    Kind kind() const { return m_kind; }
    /// "not found", "cannot access", ...: the kind in words.
    static const char* kindName(Kind kind);

private:
    Kind m_kind;
};

} // namespace quillon::services
