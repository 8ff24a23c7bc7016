#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillon::services {

/// What the profiler measures: code (a function or a routine, by its calls) or data (a variable or a region of
/// memory, by the values the core writes there). Areas are known by a handle, from 1 in the order they were
/// added, and by a unique name.
struct ProfilerArea {
    enum class Kind { Function, Routine, Variable, Region };

    std::uint32_t handle = 0;
    std::string name;
    Kind kind = Kind::Function;
    /// Entry of the code, or the first byte of the data.
    std::uint32_t address = 0;
    /// Bytes of code, or of data (1 to 4).
    std::uint32_t size = 0;
    /// A routine's exit instructions: its call ends once one of them ran.
    std::vector<std::uint32_t> exits;
    /// Two further bits the caller may give; kept, with no effect on the recording.
    unsigned extraBits = 0;

    bool isCode() const { return kind == Kind::Function || kind == Kind::Routine; }
    bool contains(std::uint32_t at) const { return at >= address && at - address < size; }
};

} // namespace quillon::services
