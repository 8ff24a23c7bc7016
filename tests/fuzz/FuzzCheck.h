#pragma once

// Checks of the fuzz targets: a broken promise prints what was seen and aborts, which libFuzzer
// reports as a crash and keeps as an artifact.

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "CYAMLDocumentWriter.h"
#include "ITestParserEventReceiver.h"
#include "MeaningRecorder.h"

namespace kestrix_fuzz {

[[noreturn]] inline void fail(const char* what, const std::string& first, const std::string& second)
{
    std::fprintf(stderr, "\n*** %s\n--- first:\n%s\n--- second:\n%s\n", what, first.c_str(), second.c_str());
    std::abort();
}

/// What `object` says through `serialize`.
inline MeaningRecorder meaningOf(kestrix::ITestParserEventReceiver& object)
{
    auto recorder = std::make_shared<MeaningRecorder>();
    object.serialize(recorder);
    return *recorder;
}

/// The text that `save` writes for `object`.
inline std::string savedText(kestrix::ITestParserEventReceiver& object)
{
    return kestrix::CYAMLDocumentWriter::toString(object);
}

} // namespace kestrix_fuzz
