#include "IKestrixYAMLInput.h"

namespace kestrix {

std::string IKestrixYAMLInput::positionText(size_t line, size_t column)
{
    return "[Line: " + std::to_string(line + 1) + "  Col: " + std::to_string(column) + "]";
}

} // namespace kestrix
