#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quillon::services {

/// A hardware-in-the-loop channel: a 32-bit register of a simulated peripheral that the firmware reads and
/// writes as memory and that HIL reads and writes by name. The kind says how the word reads as text:
/// digital "0" or "1" (any word but 0 reads 1), analog an IEEE-754 single, integer a signed 32-bit number.
struct HilChannel {
    enum class Kind { Digital, Analog, Integer };

    std::string name;
    Kind kind = Kind::Integer;
    std::uint32_t address = 0;
    /// Written when the instance starts; none leaves the register 0.
    std::optional<std::string> initial;

    /// "digital", "analog", "integer".
    static const char* kindName(Kind kind);
    static std::optional<Kind> kindNamed(const std::string& name);
    /// The word of a value text of the kind; nothing for a text the kind does not take. Digital takes 0, 1,
    /// true, false; integer decimal or 0x hexadecimal from -2^31 to 2^32 - 1; analog a finite decimal number.
    static std::optional<std::uint32_t> parse(Kind kind, const std::string& text);
    /// The text of a word: the shortest that reads back the same.
    static std::string format(Kind kind, std::uint32_t word);
};

} // namespace quillon::services
