#include "services/HilChannel.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace quillon::services {

const char* HilChannel::kindName(Kind kind)
{
    switch (kind) {
    case Kind::Digital:
        return "digital";
    case Kind::Analog:
        return "analog";
    case Kind::Integer:
        return "integer";
    }
    return "integer";
}

std::optional<HilChannel::Kind> HilChannel::kindNamed(const std::string& name)
{
    for (Kind kind : {Kind::Digital, Kind::Analog, Kind::Integer}) {
        if (name == kindName(kind)) {
            return kind;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> HilChannel::parse(Kind kind, const std::string& text)
{
    switch (kind) {
    case Kind::Digital:
        if (text == "0" || text == "false") {
            return 0u;
        }
        if (text == "1" || text == "true") {
            return 1u;
        }
        return std::nullopt;
    case Kind::Analog: {
        float value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (text.empty() || error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
            return std::nullopt;
        }
        std::uint32_t word = 0;
        std::memcpy(&word, &value, sizeof word);
        return word;
    }
    case Kind::Integer:
        break;
    }
    const bool negative = !text.empty() && text[0] == '-';
    const std::string digits = negative ? text.substr(1) : text;
    const bool isHex = digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
    const char* begin = digits.data() + (isHex ? 2 : 0);
    const char* end = digits.data() + digits.size();
    std::uint64_t magnitude = 0;
    const auto [stop, error] = std::from_chars(begin, end, magnitude, isHex ? 16 : 10);
    if (begin == end || error != std::errc() || stop != end) {
        return std::nullopt;
    }
    if (negative) {
        if (magnitude > 0x80000000u) {
            return std::nullopt;
        }
        return static_cast<std::uint32_t>(0u - static_cast<std::uint32_t>(magnitude));
    }
    if (magnitude > 0xFFFFFFFFu) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(magnitude);
}

std::string HilChannel::format(Kind kind, std::uint32_t word)
{
    switch (kind) {
    case Kind::Digital:
        return word != 0 ? "1" : "0";
    case Kind::Analog: {
        float value = 0;
        std::memcpy(&value, &word, sizeof value);
        char text[64];
        const auto result = std::to_chars(text, text + sizeof text, value);
        return std::string(text, result.ptr);
    }
    case Kind::Integer:
        break;
    }
    return std::to_string(static_cast<std::int32_t>(word));
}

} // namespace quillon::services
