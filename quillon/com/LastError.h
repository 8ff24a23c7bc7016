#pragma once

#include <mutex>
#include <string>

#include "OrbelTypes.h"

namespace quillon::com {

/// The last message of one automation object, read by `Orbel::GetLastError`. It is kept per
/// object, not per thread: an object is one client's session, and a client reads the message
/// right after the failing call. Every operation of the object but `GetLastError` and those of
/// `IUnknown` clears it when it starts, so it always tells about the latest operation.
class LastError {
public:
    enum class Kind { None, Error, Warning };

    void clear();
    void setError(std::string message);
    void setWarning(std::string message);

    Kind kind() const;
    std::string message() const;

    /// Copies the message into buffer, cut to size - 1 characters and zero-terminated, and
    /// answers ORBEL_S_MSG_FAIL for an error, ORBEL_S_WARNING for a warning, S_OK (and "")
    /// for none. A null buffer or size 0 is E_INVALIDARG.
    HRESULT copyTo(char* buffer, DWORD size) const;

private:
    void set(Kind kind, std::string message);

    mutable std::mutex m_mutex;
    Kind m_kind = Kind::None;
    std::string m_message;
};

} // namespace quillon::com
