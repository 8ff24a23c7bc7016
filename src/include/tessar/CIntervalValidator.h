#pragma once

#include "CYAMLValidator.h"

namespace kestrix {

/// Checks a profiler time interval: none or two integer items, the first not above the second.
class CIntervalValidator : public CYAMLValidator {
public:
    CIntervalValidator() = default;

    void validate(const CYAMLSequence& sequence) override;
    void validate(const CYAMLMap& map) override;
    void validate(const CYAMLScalar& scalar, const std::string& description) override;
};

} // namespace kestrix
