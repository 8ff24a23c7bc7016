#pragma once

#include <functional>
#include <string>

#include "ITestParserEventReceiver.h"

namespace kestrix {

/// Writes an object that serializes itself as one implicit YAML document, to a file or to text.
class CYAMLDocumentWriter {
public:
    /// Truncates or appends to the file; a file that cannot be opened is skipped silently.
    static void save(ITestParserEventReceiver& object, const std::string& fileName, bool isAppend);
    static std::string toString(ITestParserEventReceiver& object);
    /// The document that `write` fills, as text.
    static std::string toString(const std::function<void(IEmitter&)>& write);
};

} // namespace kestrix
