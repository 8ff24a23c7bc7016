// Reads any text as a test specification, which is also validated, and merges each test that
// was read: a specification or a ParserException, nothing else.

#include <cstddef>
#include <cstdint>
#include <string>

#include "CTestSpecification.h"
#include "IException.h"

namespace {

void mergeAll(const std::shared_ptr<kestrix::CTestSpecification>& spec)
{
    spec->merge();
    for (int i = 0; i < spec->getNoOfDerivedSpecs(); ++i) {
        mergeAll(spec->getDerivedTestSpec(i));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::shared_ptr<kestrix::CTestSpecification> spec;
    try {
        spec = kestrix::CTestSpecification::parseTestSpec(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const kestrix::IException&) {
        return 0;
    }
    mergeAll(spec);
    spec->getNoOfTests(true);
    return 0;
}
