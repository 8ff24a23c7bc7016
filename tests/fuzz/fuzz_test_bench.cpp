// Reads any text as a test file: it is a bench or a ParserException, nothing else.

#include <cstddef>
#include <cstdint>
#include <string>

#include "CTestBench.h"
#include "IException.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    try {
        kestrix::CTestBench::parse(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const kestrix::IException&) {
    }
    return 0;
}
