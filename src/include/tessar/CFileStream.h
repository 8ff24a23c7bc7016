#pragma once

#include <fstream>

#include "IStream.h"

namespace kestrix {

/// A stream onto a file, truncated or appended to.
class CFileStream : public IStream {
public:
    explicit CFileStream(const std::string& fileName, bool isAppendMode = false);

    void write(const std::string& text) override;
    std::ostream& getStream() override;
    void close() override;

private:
    std::ofstream m_stream;
};

} // namespace kestrix
