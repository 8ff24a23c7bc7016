#pragma once

#include <sstream>

#include "IStream.h"

namespace kestrix {

/// A stream into memory; `getString` gives what was written so far.
class CStringStream : public IStream {
public:
    CStringStream() = default;

    void write(const std::string& text) override;
    std::ostream& getStream() override;
    void close() override;
    std::string getString() const;

private:
    std::ostringstream m_stream;
};

} // namespace kestrix
