// Whatever reads as a test file or a test specification is saved, read again and saved again:
// both saved texts are the same, and the second reading means what the first one did (every
// scalar with the same text, expression text and quoted text).

#include <cstddef>
#include <cstdint>
#include <string>

#include "CTestBench.h"
#include "CTestSpecification.h"
#include "FuzzCheck.h"
#include "IException.h"

using namespace kestrix;
using namespace kestrix_fuzz;

namespace {

template <typename Object, typename Parse>
void checkFixedPoint(const std::string& text, Parse parse, const char* kind)
{
    std::shared_ptr<Object> first;
    try {
        first = parse(text);
    } catch (const IException&) {
        return;
    }
    // A bench whose root test has keys of its own writes them where a bench cannot read them.
    if constexpr (std::is_same<Object, CTestBench>::value) {
        if (!first->getTestSpecification()->isEmptyExceptDerived()) {
            return;
        }
    }
    const std::string saved = savedText(*first);
    std::shared_ptr<Object> second;
    try {
        second = parse(saved);
    } catch (const IException& e) {
        fail(kind, text, saved + "\n--- does not read back:\n" + e.what());
    }
    const std::string savedAgain = savedText(*second);
    if (savedAgain != saved) {
        fail(kind, saved, savedAgain + "\n--- the second save differs from the first");
    }
    const MeaningRecorder meaning = meaningOf(*first);
    if (!meaning.hasUnwritableCharacter() && meaning.text() != meaningOf(*second).text()) {
        fail(kind, meaning.text(), meaningOf(*second).text() + "\n--- the meaning changed in saving:\n" + saved);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkFixedPoint<CTestBench>(text, [](const std::string& t) { return CTestBench::parse(t); }, "test file");
    checkFixedPoint<CTestSpecification>(
        text, [](const std::string& t) { return CTestSpecification::parseTestSpec(t); }, "test specification");
    return 0;
}
