#include "CLimitedScalarValidator.h"

#include <cctype>
#include <cstring>

#include "IllegalArgumentException.h"

namespace kestrix {

void CLimitedScalarValidator::validate(const CYAMLSequence&) {}

void CLimitedScalarValidator::validate(const CYAMLMap&) {}

void CLimitedScalarValidator::validate(const CYAMLScalar& scalar, const std::string& description)
{
    const std::string& value = scalar.getValue();
    for (const char c : value) {
        const bool isAllowed = std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("_./:-", c) != nullptr;
        // strchr also finds the terminating NUL, which is no allowed character.
        if (!isAllowed || c == '\0') {
            throw IllegalArgumentException(
                KX_POS, "Only subset of all characters is allowed: letters, numbers, and symbols: _-./:")
                .add("description", description)
                .add("invalidString", value)
                .add("forbiddenChar", std::string("'") + c + "'");
        }
    }
}

} // namespace kestrix
