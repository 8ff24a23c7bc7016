#pragma once

#include <string>

#include "CYAMLMap.h"
#include "CYAMLScalar.h"
#include "CYAMLSequence.h"

namespace kestrix {

/// A check that the generic receivers apply to what they read.
class CYAMLValidator {
public:
    virtual ~CYAMLValidator() = default;

    virtual void validate(const CYAMLSequence& sequence) = 0;
    virtual void validate(const CYAMLMap& map) = 0;
    virtual void validate(const CYAMLScalar& scalar, const std::string& description) = 0;
};

} // namespace kestrix
