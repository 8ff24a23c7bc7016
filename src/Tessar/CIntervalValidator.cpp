#include "CIntervalValidator.h"

#include "CUtil.h"
#include "ParserException.h"

namespace kestrix {

void CIntervalValidator::validate(const CYAMLSequence& sequence)
{
    const auto& items = sequence.getItems();
    if (items.empty()) {
        return;
    }
    if (items.size() != 2) {
        throw ParserException(KX_POS, "Interval in profiler area section should have two items defined!")
            .add("noOfItems", static_cast<int>(items.size()));
    }
    const long long minTime = CUtil::a2l(items[0].getValue());
    const long long maxTime = CUtil::a2l(items[1].getValue());
    if (minTime > maxTime) {
        throw ParserException(KX_POS, "Invalid profiler limits. Min time > max time!")
            .add("min", items[0].getValue())
            .add("max", items[1].getValue());
    }
}

void CIntervalValidator::validate(const CYAMLMap&) {}

void CIntervalValidator::validate(const CYAMLScalar& scalar, const std::string&)
{
    CUtil::a2l(scalar.getValue());
}

} // namespace kestrix
