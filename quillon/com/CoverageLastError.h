#pragma once

#include <map>
#include <mutex>
#include <string>

#include "OrbelTypes.h"

namespace quillon::com {

/// The last failure of the coverage interface for each document name: its class and text. An operation on a
/// document clears that document's failure when it starts.
class CoverageLastError {
public:
    struct Failure {
        DWORD errorClass = 0;
        std::string text;
    };

    void set(const std::string& document, DWORD errorClass, std::string text);
    void clear(const std::string& document);
    /// Class 0 and "" when the document's last operation did not fail.
    Failure get(const std::string& document) const;

private:
    mutable std::mutex m_mutex;
    std::map<std::string, Failure> m_failures;
};

} // namespace quillon::com
