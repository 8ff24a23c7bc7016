#pragma once

#include <memory>
#include <ostream>
#include <string>

namespace kestrix {

/// Text sink of the emitters and of callers that write text themselves.
class IStream {
public:
    // Virtual so that a stream is released through any of its shared pointers.
    virtual ~IStream() = default;

    virtual void write(const std::string& text) = 0;
    virtual std::ostream& getStream() = 0;
    virtual void close() = 0;
};

typedef std::shared_ptr<IStream> IStreamSPtr;

} // namespace kestrix
