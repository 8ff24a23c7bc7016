#pragma once

#include "expr/Value.h"

#include "debuginfo/DebugInfo.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillon::target {
class Target;
}

namespace quillon::expr {

/// The text of a value. Integers in decimal, chars as `65 'A'`, bools as 1 or 0, enums by their
/// enumerator's name, floats with the digits that give them back (9 significant digits, 17 for
/// doubles), pointers as 0x and hex digits (with the string a char pointer points to and the
/// function a code pointer points to), structs as `{x = 1, y = 2}`, arrays as `{1, 2, 3}` and
/// char arrays as a string up to their last character that is not zero.
///
/// A display format changes scalars, also inside structs and arrays: d signed decimal,
/// u unsigned decimal, x or h hex, o octal, b binary, c character.
class ValueFormatter {
public:
    /// Both must outlive the formatter.
    ValueFormatter(const debuginfo::DebugInfo& debug, const target::Target& target) : m_debug(debug), m_target(target)
    {
    }

    /// Throws ExprError for an unknown display format or unreadable memory.
    std::string format(const Value& value, const std::string& displayFormat = "") const;

    /// Whether the text names a display format.
    static bool isDisplayFormat(const std::string& text);

private:
    void write(std::string& out, const debuginfo::Type* type, const std::vector<std::uint8_t>& bytes,
               std::size_t offset, char format) const;
    void writeScalar(std::string& out, const debuginfo::Type* plain, std::uint64_t bits, char format) const;
    void writeStruct(std::string& out, const debuginfo::Type* plain, const std::vector<std::uint8_t>& bytes,
                     std::size_t offset, char format) const;
    void writeArray(std::string& out, const debuginfo::Type* plain, const std::vector<std::uint8_t>& bytes,
                    std::size_t offset, char format) const;
    void writePointer(std::string& out, const debuginfo::Type* plain, std::uint32_t address) const;
    std::string function(std::uint32_t address) const;

    const debuginfo::DebugInfo& m_debug;
    const target::Target& m_target;
};

} // namespace quillon::expr
