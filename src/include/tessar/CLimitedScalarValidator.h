#pragma once

#include "CYAMLValidator.h"

namespace kestrix {

/// Allows in a scalar only letters, digits and the symbols _-./: (for ids and tags).
class CLimitedScalarValidator : public CYAMLValidator {
public:
    void validate(const CYAMLSequence& sequence) override;
    void validate(const CYAMLMap& map) override;
    void validate(const CYAMLScalar& scalar, const std::string& description) override;
};

} // namespace kestrix
