#pragma once

#include <stdexcept>
#include <string>

namespace quillon::services {

/// Failure of a document, of a recording (trace, coverage, terminal) or of a HIL channel. The text names the
/// document, channel or item at fault and what is wrong with it; the kind lets an adapter choose its result code.
class AnalyzerError : public std::runtime_error {
public:
    enum class Kind {
        InvalidArgument, ///< a value the operation cannot take: an item number, a format, a size
        NotFound,        ///< no such document, trigger, function, module or channel
        FileNotFound,    ///< a document file that does not exist
        NotAvailable,    ///< not offered here: no terminal UART, no prompt without a user interface
        NotImplemented,  ///< a known format or operation that this Quillon does not do
        IllegalState,    ///< not now: the target runs, nothing is recorded, no rangeset to add to
        BadSize,         ///< a buffer too small for the answer
        Failed,          ///< any other failure, such as a file that cannot be written
    };

    AnalyzerError(Kind kind, const std::string& message) : std::runtime_error(message), m_kind(kind) {}

    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

} // namespace quillon::services
