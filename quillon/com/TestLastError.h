#pragma once

#include <mutex>
#include <string>

#include "OrbelTypes.h"

namespace quillon::com {

/// The last failure of the test interface: its class (1 illegal state, 2 illegal argument, 3 I/O; 0 none) and its
/// text. A test that ended unexpectedly leaves what happened here as well.
class TestLastError {
public:
    void set(DWORD errorClass, std::string text);
    void clear() { set(0, ""); }
    DWORD errorClass() const;
    std::string text() const;

private:
    mutable std::mutex m_mutex;
    DWORD m_class = 0;
    std::string m_text;
};

} // namespace quillon::com
