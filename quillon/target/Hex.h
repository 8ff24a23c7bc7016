#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace quillon::target {

/// "0x" and eight hex digits: how addresses appear in the target's messages.
inline std::string hex32(uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(value));
    return text;
}

} // namespace quillon::target
