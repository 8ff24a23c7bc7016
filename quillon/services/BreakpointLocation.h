#pragma once

#include <cstdint>
#include <string>

namespace quillon::services {

/// Where a breakpoint goes, as the user names it: memory area and address, a function, or a source file and line.
struct BreakpointLocation {
    enum class Kind { Address, Function, Line };

    Kind kind = Kind::Address;
    std::uint8_t area = 0;
    std::uint32_t address = 0;
    std::string name; ///< function, or file of a line
    unsigned line = 0;

    static BreakpointLocation at(std::uint32_t address, std::uint8_t area = 0)
    {
        return BreakpointLocation{Kind::Address, area, address, {}, 0};
    }
    static BreakpointLocation function(std::string name) { return BreakpointLocation{Kind::Function, 0, 0, std::move(name), 0}; }
    static BreakpointLocation sourceLine(std::string file, unsigned line)
    {
        return BreakpointLocation{Kind::Line, 0, 0, std::move(file), line};
    }
};

} // namespace quillon::services
